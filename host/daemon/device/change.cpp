// A row is changed as it travels: its fixed values in place, its lists by exchanging their items.
#include "host/daemon/device/change.h"

#include "host/daemon/wire/frame.h"

#include <fmt/format.h>
#include <stdexcept>

namespace rsvpsimd {

namespace {

const Field &FieldIn(const Layout &layout, ByteView image, const std::string &name)
{
    const Field *field = FindField(layout, name, KindsOf(layout, image));
    if (field == nullptr)
        throw std::invalid_argument(fmt::format("{} has no place in the object as it is", name));
    return *field;
}

// True if the form of an object follows from this field.
bool Decides(const Layout &layout, std::string_view name)
{
    return std::ranges::any_of(layout.fields,
                               [&](const Field &field) { return field.form && field.form->field == name; });
}

void Add(std::span<uint8_t> image, const Field &field, const Value &value)
{
    const auto *numbers = std::get_if<std::vector<uint64_t>>(&value);
    const size_t count = numbers != nullptr ? numbers->size() : 1;
    for (size_t i = 0; i < count; ++i) {
        const auto place = image.subspan(field.offset + i * field.width, field.width);
        StoreNet(place, LoadNet(place) + (numbers != nullptr ? (*numbers)[i] : std::get<uint64_t>(value)));
    }
}

bool Holds(const ListKind &kind, uint16_t item)
{
    return kind.item == item ||
           std::ranges::any_of(kind.children, [&](const ListKind &child) { return Holds(child, item); });
}

bool IsNamed(const Block &block, const ListKind &kind)
{
    return block.lists.contains(kind.name) || block.texts.contains(kind.name);
}

} // namespace

bool IsCounted(const Field &field)
{
    return field.order == Order::Network || (field.order == Order::Raw && field.width == 1);
}

void ChangeRecord(const Layout &layout, std::span<uint8_t> image, const RecordChange &change)
{
    Bytes changed(image.begin(), image.end());
    // What decides about the form of an object comes first.
    for (const bool deciding : {true, false}) {
        for (const auto &[name, value] : change.set) {
            if (Decides(layout, name) != deciding)
                continue;
            const std::string problem = StoreField(changed, FieldIn(layout, changed, name), value);
            if (!problem.empty())
                throw std::invalid_argument(fmt::format("{}: {}", name, problem));
        }
    }
    for (const auto &[name, value] : change.added)
        Add(changed, FieldIn(layout, changed, name), value);
    std::ranges::copy(changed, image.begin());
}

void ChangeBody(const RowKind &kind, Bytes &body, const BlockChange &change)
{
    const std::vector<Item> items = ReadItems(body).value();
    Bytes changed;
    for (size_t i = 0; i < kind.parts.size(); ++i) {
        const Part &part = kind.parts[i];
        Bytes value(items[i].value.begin(), items[i].value.end());
        ChangeRecord(*part.layout, value, {FieldsOf(part, change.set.fields), FieldsOf(part, change.added)});
        AppendItem(changed, part.item, value);
    }
    for (const ListKind &list : kind.lists) {
        if (IsNamed(change.set, list)) {
            AppendLists(changed, {&list, 1}, change.set);
            continue;
        }
        for (const Item &item : std::span(items).subspan(kind.parts.size()))
            if (Holds(list, item.type))
                AppendItem(changed, item.type, item.value);
    }
    CheckSize(changed);
    body = std::move(changed);
}

} // namespace rsvpsimd
