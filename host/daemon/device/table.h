// One table: rows in the order of their key bytes, some kept, some made on demand from a row number. Get,
// first and next are one search, so that no table can walk differently from another.
#ifndef HOST_DAEMON_DEVICE_TABLE_H
#define HOST_DAEMON_DEVICE_TABLE_H

#include "host/daemon/device/row.h"

#include <set>

namespace rsvpsimd {

enum class Seek : uint8_t { Exact, First, After };

// The order of a table: that of the key bytes as they travel.
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

    // Adds `count` rows that look like `variants` in turn and are told apart by the first word of their key.
    // Nothing is stored for them: a million rows cost what the variants cost.
    void Make(std::vector<EncodedRow> variants, uint32_t count);

    // With `ingressOnly`, rows of another role than head are passed over.
    std::optional<EncodedRow> Find(Seek seek, ByteView key, bool ingressOnly = false) const;

    // The kept row of this key, for a change in place. A made row is kept from now on. Null if there is no
    // row.
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
