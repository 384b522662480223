// Turns the values of a row into items: its parts, then its lists with theirs, in the order of the description.
#include "host/daemon/device/row.h"

#include "host/daemon/wire/frame.h"

#include <fmt/format.h>
#include <stdexcept>

namespace rsvpsimd {

namespace {

Bytes KeyOf(const RowKind &kind, ByteView firstValue, const Block &block)
{
    if (kind.keyFields.empty())
        return Encode(*kind.keyLayout, block.key);
    Bytes key;
    for (const std::string_view name : kind.keyFields) {
        const Extent extent = ExtentOf(kind.RowLayout(), name);
        const ByteView bytes = firstValue.subspan(extent.offset, extent.size);
        key.insert(key.end(), bytes.begin(), bytes.end());
    }
    key.resize(kind.keyLayout->size); // the rest of the key is 0
    return key;
}

} // namespace

std::string PrefixOf(const Part &part)
{
    return part.prefix.empty() ? "" : std::string(part.prefix) + ".";
}

Record FieldsOf(const Part &part, const Record &fields)
{
    Record own;
    const std::string prefix = PrefixOf(part);
    for (const auto &[name, value] : fields)
        if (name.starts_with(prefix) && part.layout->Has(name.substr(prefix.size())))
            own.emplace(name.substr(prefix.size()), value);
    return own;
}

void AppendLists(Bytes &body, std::span<const ListKind> kinds, const Block &block)
{
    for (const ListKind &kind : kinds) {
        if (kind.shape == Shape::Text) {
            if (const auto text = block.texts.find(kind.name); text != block.texts.end())
                AppendItem(body, kind.item, Bytes(text->second.begin(), text->second.end()));
            continue;
        }
        const auto list = block.lists.find(kind.name);
        if (list == block.lists.end())
            continue;
        if (kind.shape == Shape::Counted) {
            std::vector<Record> entries;
            for (const Block &entry : list->second)
                entries.push_back(entry.fields);
            const Bytes value = EncodeList(**kind.list, entries);
            if (value.size() > kBodyMax)
                throw std::invalid_argument(
                    fmt::format("{}: {} entries do not fit a message", kind.name, entries.size()));
            AppendItem(body, kind.item, value);
            continue;
        }
        for (const Block &entry : list->second) {
            AppendItem(body, kind.item, Encode(**kind.entry, entry.fields));
            AppendLists(body, kind.children, entry);
        }
    }
}

void CheckSize(const Bytes &body)
{
    if (body.size() > kBodyMax)
        throw std::invalid_argument(
            fmt::format("its items take {} bytes, a message has room for {}", body.size(), kBodyMax));
}

EncodedRow EncodeRow(const RowKind &kind, const Block &block)
{
    EncodedRow row;
    for (const Part &part : kind.parts) {
        const Bytes value = Encode(*part.layout, FieldsOf(part, block.fields));
        if (row.body.empty())
            row.key = KeyOf(kind, value, block);
        AppendItem(row.body, part.item, value);
    }
    AppendLists(row.body, kind.lists, block);
    CheckSize(row.body);
    return row;
}

} // namespace rsvpsimd
