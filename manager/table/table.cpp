// Reading one row, and the key that it holds.
#include "manager/table/table.h"

#include "manager/exchange/exchange.h"

namespace manager {

uint32_t ReadRow(const Table &table, const RowRead &read, int32_t fd, const void *key, void *row)
{
    if (key != nullptr && !read.keyed) {
        const auto *from = static_cast<const std::byte *>(key);
        for (const KeyPart &part : table.keyParts) {
            std::memcpy(static_cast<std::byte *>(row) + part.offset, from, part.size);
            from += part.size;
        }
    }
    ForgetExchange();
    return read.call(fd, key, row);
}

void CopyKey(const Table &table, const void *row, void *key)
{
    auto *to = static_cast<std::byte *>(key);
    for (const KeyPart &part : table.keyParts) {
        std::memcpy(to, At(row, part.offset), part.size);
        to += part.size;
    }
}

} // namespace manager
