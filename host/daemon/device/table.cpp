// The search over kept and made rows. Arithmetic turns a number into a row and a key into a number, without touching
// any other row.
#include "host/daemon/device/table.h"

#include "host/daemon/wire/frame.h"

namespace rsvpsimd {

namespace {

constexpr uint32_t kFirstAddress = 0x0A000001; // made rows with an address in front count from 10.0.0.1
constexpr uint8_t kRoleHead = 1;

// A client that sets or undoes one interface after the other must not fill the memory.
constexpr size_t kMostStored = 100'000;

bool IsHead(const RowKind &kind, const EncodedRow &row)
{
    constexpr size_t kOffset = kItemHeaderSize + FieldAt("tunnel", "tunnelRole").offset;
    return kind.hasIngressWalk && row.body[kOffset] == kRoleHead;
}

} // namespace

Table::Table(const RowKind &kind) : kind_(&kind)
{
    const Field &counted = *FindField(*kind.RowLayout(), kind.numbered, KindsOf(Record{}));
    numberOffset_ = kItemHeaderSize + counted.offset;
    base_ = counted.order == Order::Address ? kFirstAddress : 1;
}

bool Table::HasRoomFor(ByteView key) const
{
    return kept_.size() + made_.Runs() < kMostStored || kept_.contains(key);
}

bool Table::Insert(EncodedRow row)
{
    if (kept_.contains(row.key))
        return false;
    RemoveMade(row.key);
    if (IsHead(*kind_, row))
        keptHeads_.insert(row.key);
    kept_.emplace(std::move(row.key), std::move(row.body));
    return true;
}

bool Table::Remove(ByteView key)
{
    const auto kept = kept_.find(key);
    if (kept == kept_.end())
        return RemoveMade(key);
    keptHeads_.erase(kept->first);
    kept_.erase(kept);
    return true;
}

bool Table::RemoveMade(ByteView key)
{
    if (!FindMade(Seek::Exact, key, false))
        return false;
    const auto number = static_cast<uint32_t>(LoadNet(key.first(4)) - base_);
    made_.Remove(number);
    madeHeads_.Remove(number);
    return true;
}

void Table::Make(std::vector<EncodedRow> variants, uint32_t count)
{
    variants_ = std::move(variants);
    const auto cycle = static_cast<uint32_t>(variants_.size());
    std::vector<uint32_t> all;
    std::vector<uint32_t> heads;
    for (uint32_t place = 0; place < cycle; ++place) {
        all.push_back(place);
        if (IsHead(*kind_, variants_[place]))
            heads.push_back(place);
    }
    made_ = MadeRows(count, cycle, std::move(all));
    madeHeads_ = MadeRows(count, cycle, std::move(heads));
    for (const auto &[key, body] : kept_)
        RemoveMade(key);
}

EncodedRow Table::MakeRow(uint32_t number) const
{
    EncodedRow row = variants_[number % variants_.size()];
    StoreNet(std::span(row.key).first(4), base_ + number);
    StoreNet(std::span(row.body).subspan(numberOffset_, 4), base_ + number);
    return row;
}

std::optional<EncodedRow> Table::FindMade(Seek seek, ByteView key, bool ingressOnly) const
{
    const MadeRows &rows = ingressOnly ? madeHeads_ : made_;
    const uint64_t word = seek == Seek::First ? 0 : LoadNet(key.first(4));
    const std::optional<uint32_t> number = rows.From(word < base_ ? 0 : word - base_);
    if (!number)
        return std::nullopt;
    EncodedRow row = MakeRow(*number);
    if (seek == Seek::First || (seek == Seek::Exact && std::ranges::equal(row.key, key)) ||
        (seek == Seek::After && KeyOrder()(key, row.key)))
        return row;
    // Its first word is that of the key, so the one behind it is greater.
    const std::optional<uint32_t> next = seek == Seek::After ? rows.From(uint64_t{*number} + 1) : std::nullopt;
    return next ? std::optional(MakeRow(*next)) : std::nullopt;
}

Table::Rows::const_iterator Table::FindKept(Seek seek, ByteView key, bool ingressOnly) const
{
    const auto find = [&](const auto &rows) {
        if (seek == Seek::First)
            return rows.begin();
        return seek == Seek::After ? rows.upper_bound(key) : rows.find(key);
    };
    if (!ingressOnly)
        return find(kept_);
    const auto head = find(keptHeads_);
    return head == keptHeads_.end() ? kept_.end() : kept_.find(*head);
}

std::optional<EncodedRow> Table::Find(Seek seek, ByteView key, bool ingressOnly) const
{
    const auto kept = FindKept(seek, key, ingressOnly);
    std::optional<EncodedRow> made = FindMade(seek, key, ingressOnly);
    if (kept == kept_.end() || (made && KeyOrder()(made->key, kept->first)))
        return made;
    return EncodedRow{kept->first, kept->second};
}

uint64_t Table::CountUpTo(ByteView key, bool ingressOnly) const
{
    const auto kept = ingressOnly ? std::distance(keptHeads_.begin(), keptHeads_.upper_bound(key))
                                  : std::distance(kept_.begin(), kept_.upper_bound(key));
    const MadeRows &made = ingressOnly ? madeHeads_ : made_;
    const std::optional<EncodedRow> next = FindMade(Seek::After, key, ingressOnly);
    const uint64_t before = next ? made.SizeBelow(LoadNet(ByteView(next->key).first(4)) - base_) : made.Size();
    return static_cast<uint64_t>(kept) + before;
}

// Stored rows are compared one by one. Of made rows only their number is, unless they are made otherwise: then all of
// them are others.
Table::Difference Table::Compare(const Table &before, const Table &after)
{
    Difference difference;
    for (const auto &[key, body] : after.kept_) {
        const std::optional<EncodedRow> old = before.Find(Seek::Exact, key);
        if (!old)
            ++difference.added;
        else if (old->body != body)
            ++difference.changed;
    }
    for (const auto &[key, body] : before.kept_) {
        if (after.kept_.contains(key))
            continue;
        const std::optional<EncodedRow> now = after.Find(Seek::Exact, key);
        if (!now)
            ++difference.removed;
        else if (now->body != body)
            ++difference.changed;
    }
    if (before.variants_ != after.variants_)
        difference.changed += std::min(before.made_.Size(), after.made_.Size());
    const uint64_t known = before.Size() + difference.added - difference.removed;
    if (after.Size() > known)
        difference.added += after.Size() - known;
    else
        difference.removed += known - after.Size();
    return difference;
}

Bytes *Table::Edit(ByteView key)
{
    auto kept = kept_.find(key);
    if (kept == kept_.end()) {
        std::optional<EncodedRow> made = FindMade(Seek::Exact, key, false);
        if (!made)
            return nullptr;
        Insert(std::move(*made));
        kept = kept_.find(key);
    }
    return &kept->second;
}

} // namespace rsvpsimd
