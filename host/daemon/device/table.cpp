// The search over kept and made rows. Arithmetic turns a number into a row and a key into a number, without touching
// any other row.
#include "host/daemon/device/table.h"

#include "host/daemon/wire/frame.h"

namespace rsvpsimd {

namespace {

constexpr uint32_t kFirstAddress = 0x0A000001; // made rows with an address in front count from 10.0.0.1
constexpr uint8_t kRoleHead = 1;

bool IsHead(const EncodedRow &row)
{
    constexpr size_t kOffset = kItemHeaderSize + FieldAt("tunnel", "tunnelRole").offset;
    return row.body[kOffset] == kRoleHead;
}

} // namespace

Table::Table(const RowKind &kind) : kind_(&kind)
{
    const Field &counted = *FindField(*kind.RowLayout(), kind.numbered, KindsOf(Record{}));
    numberOffset_ = kItemHeaderSize + counted.offset;
    base_ = counted.order == Order::Address ? kFirstAddress : 1;
}

bool Table::Insert(EncodedRow row)
{
    if (FindMade(Seek::Exact, row.key))
        replaced_.insert(row.key);
    return kept_.emplace(std::move(row.key), std::move(row.body)).second;
}

bool Table::Remove(ByteView key)
{
    if (const auto kept = kept_.find(key); kept != kept_.end()) {
        kept_.erase(kept);
        return true;
    }
    if (!FindMade(Seek::Exact, key))
        return false;
    replaced_.emplace(key.begin(), key.end());
    return true;
}

void Table::Make(std::vector<EncodedRow> variants, uint32_t count)
{
    variants_ = std::move(variants);
    made_ = count;
    for (const auto &[key, body] : kept_)
        if (FindMade(Seek::Exact, key))
            replaced_.insert(key);
}

EncodedRow Table::MakeRow(uint32_t number) const
{
    EncodedRow row = variants_[number % variants_.size()];
    StoreNet(std::span(row.key).first(4), base_ + number);
    StoreNet(std::span(row.body).subspan(numberOffset_, 4), base_ + number);
    return row;
}

std::optional<EncodedRow> Table::FindMade(Seek seek, ByteView key) const
{
    uint64_t number = 0;
    if (seek != Seek::First) {
        const uint64_t word = LoadNet(key.first(4));
        if (seek == Seek::Exact && word < base_)
            return std::nullopt;
        number = word < base_ ? 0 : word - base_;
    }
    for (; number < made_; ++number) {
        EncodedRow row = MakeRow(static_cast<uint32_t>(number));
        const bool wanted = seek == Seek::First || (seek == Seek::Exact && std::ranges::equal(row.key, key)) ||
                            (seek == Seek::After && KeyOrder()(key, row.key));
        if (wanted && !replaced_.contains(row.key))
            return row;
        if (seek == Seek::Exact)
            return std::nullopt;
    }
    return std::nullopt;
}

std::optional<EncodedRow> Table::FindAny(Seek seek, ByteView key) const
{
    auto kept = kept_.begin();
    if (seek == Seek::Exact)
        kept = kept_.find(key);
    else if (seek == Seek::After)
        kept = kept_.upper_bound(key);
    std::optional<EncodedRow> made = FindMade(seek, key);
    if (kept == kept_.end() || (made && KeyOrder()(made->key, kept->first)))
        return made;
    return EncodedRow{kept->first, kept->second};
}

std::optional<EncodedRow> Table::Find(Seek seek, ByteView key, bool ingressOnly) const
{
    std::optional<EncodedRow> row = FindAny(seek, key);
    while (row && ingressOnly && !IsHead(*row))
        row = FindAny(Seek::After, row->key);
    return row;
}

Bytes *Table::Edit(ByteView key)
{
    if (const auto kept = kept_.find(key); kept != kept_.end())
        return &kept->second;
    std::optional<EncodedRow> made = FindMade(Seek::Exact, key);
    if (!made)
        return nullptr;
    replaced_.insert(made->key);
    return &kept_.emplace(std::move(made->key), std::move(made->body)).first->second;
}

} // namespace rsvpsimd
