// One table: rows in the order of their key bytes, some stored, some made on demand from a number. Get, get-first and
// get-next are one search, so that all tables behave alike. No search looks at more rows than it has to: it takes
// time with the logarithm of what is stored, whatever clients have set and removed.
#ifndef HOST_DAEMON_DEVICE_TABLE_H
#define HOST_DAEMON_DEVICE_TABLE_H

#include "host/daemon/device/made_rows.h"
#include "host/daemon/device/row.h"

#include <set>

namespace rsvpsimd {

enum class Seek : uint8_t { Exact, First, After };

// Tables are in the order of the key bytes as they travel.
struct KeyOrder {
    using is_transparent = void;
    bool operator()(ByteView left, ByteView right) const { return std::ranges::lexicographical_compare(left, right); }
};

class Table {
public:
    explicit Table(const RowKind &kind);

    const RowKind &Kind() const { return *kind_; }
    uint64_t Size() const { return kept_.size() + made_.Size(); }

    bool Has(ByteView key) const { return Find(Seek::Exact, key).has_value(); }

    // False if the table is full and would have to store more to make, change or remove this row.
    bool HasRoomFor(ByteView key) const;

    // False if a row with this key is already kept.
    bool Insert(EncodedRow row);
    bool Remove(ByteView key);

    // Adds `count` rows that repeat `variants` in turn and differ in the first word of their key. Only the variants
    // are stored, however many rows there are.
    void Make(std::vector<EncodedRow> variants, uint32_t count);

    // With `ingressOnly`, rows whose role is not head are skipped.
    std::optional<EncodedRow> Find(Seek seek, ByteView key, bool ingressOnly = false) const;

    // How many rows have this key or a smaller one. Takes time with their number, as far as they are stored.
    uint64_t CountUpTo(ByteView key, bool ingressOnly = false) const;

    // What it takes to come from one table of a kind to another. Takes time with the number of stored rows.
    struct Difference {
        uint64_t added = 0;
        uint64_t changed = 0;
        uint64_t removed = 0;
        bool operator==(const Difference &) const = default;
    };
    static Difference Compare(const Table &before, const Table &after);

    // The body of this row, to be changed in place, or null. A made row is kept from now on. The role must stay as it
    // is.
    Bytes *Edit(ByteView key);

private:
    using Rows = std::map<Bytes, Bytes, KeyOrder>;

    Rows::const_iterator FindKept(Seek seek, ByteView key, bool ingressOnly) const;
    std::optional<EncodedRow> FindMade(Seek seek, ByteView key, bool ingressOnly) const;
    EncodedRow MakeRow(uint32_t number) const;
    bool RemoveMade(ByteView key);

    const RowKind *kind_;
    Rows kept_;
    std::set<Bytes, KeyOrder> keptHeads_; // keys of the kept rows that an ingress walk meets
    std::vector<EncodedRow> variants_;
    MadeRows made_;
    MadeRows madeHeads_;
    uint32_t base_ = 0;       // first word of the key of made row 0
    size_t numberOffset_ = 0; // of the counted field in the body
};

} // namespace rsvpsimd

#endif
