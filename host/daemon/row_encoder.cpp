// Turns what a row says into the bytes it travels as. Rows of the scenario and rows made by number go through
// here, so that both are checked alike.
#include "row_kinds.h"

#include <algorithm>
#include <fmt/format.h>
#include <stdexcept>

namespace rsvpsimd {

namespace {

// The record's fields that belong to this part, under the part's own names.
Record FieldsOf(const Part &part, const Record &fields)
{
    Record own;
    const Layout &layout = LayoutNamed(part.layout);
    for (const auto &[name, value] : fields) {
        std::string_view rest = name;
        if (!part.prefix.empty()) {
            if (!rest.starts_with(part.prefix) || rest.substr(part.prefix.size(), 1) != ".")
                continue;
            rest.remove_prefix(part.prefix.size() + 1);
        }
        const bool known = std::any_of(layout.fields.begin(), layout.fields.end(),
                                       [&](const Field &field) { return field.name == rest; });
        if (known)
            own.emplace(rest, value);
    }
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
            const Bytes value = EncodeList(*FindListLayout(kind.layout), entries);
            if (value.size() > kBodyMax)
                throw std::invalid_argument(
                    fmt::format("{}: {} entries do not fit a message", kind.name, entries.size()));
            AppendItem(body, kind.item, value);
            continue;
        }
        for (const Block &entry : list->second) {
            AppendItem(body, kind.item, Encode(LayoutNamed(kind.layout), entry.fields));
            AppendLists(body, kind.children, entry);
        }
    }
}

Bytes KeyOf(const RowKind &kind, ByteView firstValue, const Block &block)
{
    const Layout &layout = LayoutNamed(kind.keyLayout);
    if (kind.keyFields.empty())
        return Encode(layout, block.key);
    Bytes key;
    for (const std::string_view name : kind.keyFields) {
        const Extent extent = ExtentOf(LayoutNamed(kind.parts.front().layout), name);
        const ByteView bytes = firstValue.subspan(extent.offset, extent.size);
        key.insert(key.end(), bytes.begin(), bytes.end());
    }
    key.resize(layout.size); // what a key has behind the row's fields is 0
    return key;
}

} // namespace

Extent ExtentOf(const Layout &layout, std::string_view fieldOrObject)
{
    std::size_t begin = layout.size;
    std::size_t end = 0;
    for (const Field &field : layout.fields) {
        const std::string_view name = field.name;
        if (name != fieldOrObject && !(name.starts_with(fieldOrObject) && name[fieldOrObject.size()] == '.'))
            continue;
        begin = std::min(begin, field.offset);
        end = std::max(end, field.offset + field.width * field.count);
    }
    if (begin >= end)
        throw std::logic_error(fmt::format("{} has no {}", layout.name, fieldOrObject));
    return {begin, end - begin};
}

EncodedRow EncodeRow(const RowKind &kind, const Block &block)
{
    EncodedRow row;
    for (const Part &part : kind.parts) {
        const Bytes value = Encode(LayoutNamed(part.layout), FieldsOf(part, block.fields));
        if (row.body.empty())
            row.key = KeyOf(kind, value, block);
        AppendItem(row.body, part.item, value);
    }
    AppendLists(row.body, kind.lists, block);
    if (row.body.size() > kBodyMax)
        throw std::invalid_argument(
            fmt::format("its items take {} bytes, a message has room for {}", row.body.size(), kBodyMax));
    return row;
}

} // namespace rsvpsimd
