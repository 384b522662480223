// One table: rows in the order of their key bytes, some stored, some made on demand from a number. Get, get-first and
// get-next are one search, so that all tables behave alike.
#ifndef HOST_DAEMON_DEVICE_TABLE_H
#define HOST_DAEMON_DEVICE_TABLE_H

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
    size_t Kept() const { return kept_.size(); }
    uint64_t Size() const { return kept_.size() + made_ - replaced_.size(); }

    // False if a row with this key is already kept.
    bool Insert(EncodedRow row);
    bool Remove(ByteView key);

    // Adds `count` rows that repeat `variants` in turn and differ in the first word of their key. Only the variants
    // are stored, however many rows there are.
    void Make(std::vector<EncodedRow> variants, uint32_t count);

    // With `ingressOnly`, rows whose role is not head are skipped.
    std::optional<EncodedRow> Find(Seek seek, ByteView key, bool ingressOnly = false) const;

    // The body of this row, to be changed in place, or null. A made row is kept from now on.
    Bytes *Edit(ByteView key);

private:
    std::optional<EncodedRow> FindAny(Seek seek, ByteView key) const;
    std::optional<EncodedRow> FindMade(Seek seek, ByteView key) const;
    EncodedRow MakeRow(uint32_t number) const;

    const RowKind *kind_;
    std::map<Bytes, Bytes, KeyOrder> kept_;
    std::vector<EncodedRow> variants_;
    uint32_t made_ = 0;
    uint32_t base_ = 0;                  // first word of the key of made row 0
    size_t numberOffset_ = 0;            // of the counted field in the body
    std::set<Bytes, KeyOrder> replaced_; // keys of made rows that were removed or are kept by now
};

} // namespace rsvpsimd

#endif
