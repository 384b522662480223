// One walk for all tables.
#include "manager/table/walk.h"

#include "manager/record/key.h"

#include <algorithm>

namespace manager {
namespace {

/** A row that is read again and again; what it owns is given back before each read. */
class RowBuffer {
public:
    explicit RowBuffer(const Table &table) : table_(table), row_(table.row().size) {}
    ~RowBuffer() { Release(); }
    RowBuffer(const RowBuffer &) = delete;
    RowBuffer &operator=(const RowBuffer &) = delete;

    uint32_t Read(const RowRead &read, int32_t fd, const void *key)
    {
        Release();
        const uint32_t status = ReadRow(table_, read, fd, key, row_.data());
        full_ = status == RSVP_MOR_OK;
        return status;
    }

    void *Row() { return row_.data(); }

private:
    void Release()
    {
        if (full_ && table_.release != nullptr)
            table_.release(row_.data());
        full_ = false;
        std::fill(row_.begin(), row_.end(), std::byte{0});
    }

    const Table &table_;
    Bytes row_;
    bool full_ = false;
};

} // namespace

bool RepeatFinder::Repeats(const Bytes &key)
{
    if (key == previous_ || key == kept_)
        return true;
    previous_ = key;
    if (++rows_ == nextKept_) {
        kept_ = key;
        nextKept_ *= 2;
    }
    return false;
}

WalkResult Walk(const Table &table, const Dictionary &dictionary, int32_t fd, const void *after, const OnRow &onRow)
{
    const std::vector<KeyPart> parts = KeyPartsOf(table, dictionary);
    WalkResult result;
    RepeatFinder finder;
    RowBuffer row(table);
    Bytes key(table.key().size);
    const RowRead *read = &table.first;
    if (after != nullptr) {
        std::memcpy(key.data(), after, key.size());
        finder.Repeats(key);
        read = &table.next;
    }
    for (;;) {
        result.function = read->function;
        result.status = row.Read(*read, fd, read == &table.first ? nullptr : key.data());
        if (result.status != RSVP_MOR_OK)
            break;
        CopyKey(parts, row.Row(), key.data());
        const bool repeats = !parts.empty() && finder.Repeats(key);
        if (repeats || !onRow(row.Row())) {
            result.end = repeats ? WalkEnd::Stuck : WalkEnd::Stopped;
            return result;
        }
        ++result.rows;
        if (parts.empty()) {
            result.end = WalkEnd::NoKey;
            return result;
        }
        read = &table.next;
    }
    if (dictionary.EndsTable(result.status)) {
        result.status = RSVP_MOR_OK;
        return result;
    }
    result.end = WalkEnd::Broken;
    if (result.rows != 0)
        result.lastKey = KeyText(table.key(), key.data());
    return result;
}

} // namespace manager
