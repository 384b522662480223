// Unfolds the constant tables into layouts and moves values between records and bytes by them. The byte order
// of the machine plays no part: every number is taken apart and put together arithmetically.
#include "wire_layout.h"

#include "wire_tables.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <bit>
#include <fmt/format.h>
#include <stdexcept>

namespace rsvpsimd {

namespace {

void Unfold(Layout &layout, TableRows rows, const std::string &prefix, std::size_t base)
{
    for (const TableRow &row : rows) {
        const std::string name = prefix + std::string(row.name);
        if (!row.object.empty()) {
            for (std::size_t i = 0; i < row.count; i++) {
                std::string element = row.count > 1 ? fmt::format("{}[{}].", name, i) : name + ".";
                if (row.name.empty())
                    element = prefix;
                Unfold(layout, row.object, element, base + row.offset + i * row.width);
            }
            continue;
        }
        Field field{.name = name,
                    .offset = base + row.offset,
                    .width = row.width,
                    .count = row.count,
                    .order = row.order,
                    .secret = row.secret};
        if (!row.form.field.empty())
            field.form = Form{prefix + std::string(row.form.field), {row.form.kindA, row.form.kindB}, row.form.among};
        layout.fields.push_back(std::move(field));
    }
}

std::vector<Layout> UnfoldAll()
{
    std::vector<Layout> layouts;
    for (const auto group : {KeyTables(), CommandTables(), RecordTables(), BlockTables()}) {
        for (const TableOfRows &table : group) {
            Layout layout{.name = std::string(table.name), .size = table.size, .fields = {}};
            Unfold(layout, table.rows, "", 0);
            for (const Field &field : layout.fields)
                if (field.offset + field.width * field.count > layout.size)
                    throw std::logic_error(fmt::format("{} runs over the end of {}", field.name, layout.name));
            layouts.push_back(std::move(layout));
        }
    }
    return layouts;
}

bool Holds(const Form &form, const KindLookup &kinds)
{
    const std::uint64_t kind = kinds(form.field);
    return (std::find(form.kinds.begin(), form.kinds.end(), kind) != form.kinds.end()) == form.among;
}

// A CR-LSP rate crosses the wire as a whole number whose bytes are reversed and that is then written as a
// single-precision number, least significant byte first. The step is its own inverse, so it serves both ways.
float ConvertRate(float rate)
{
    std::uint32_t whole = 0;
    if (rate >= 4294967296.0F)
        whole = 0xFFFFFFFF;
    else if (rate >= 1.0F)
        whole = static_cast<std::uint32_t>(rate);
    const std::uint32_t reversed = whole >> 24 | (whole >> 8 & 0xFF00) | (whole << 8 & 0xFF0000) | whole << 24;
    return static_cast<float>(reversed);
}

double ToDouble(const Value &value)
{
    return std::holds_alternative<double>(value) ? std::get<double>(value)
                                                 : static_cast<double>(std::get<std::uint64_t>(value));
}

std::string StoreBytes(std::span<std::uint8_t> place, const Bytes &bytes)
{
    if (bytes.size() > place.size())
        return fmt::format("has {} bytes, the field has room for {}", bytes.size(), place.size());
    std::fill(std::copy(bytes.begin(), bytes.end(), place.begin()), place.end(), std::uint8_t{0});
    return {};
}

std::string StoreNumber(std::span<std::uint8_t> place, std::uint64_t number)
{
    if (place.size() < 8 && number >> (8 * place.size()) != 0)
        return fmt::format("{} does not fit {} bits", number, 8 * place.size());
    StoreNet(place, number);
    return {};
}

std::string StoreReal(std::span<std::uint8_t> place, Order order, double number)
{
    const auto single = static_cast<float>(number);
    StoreNet(place, std::bit_cast<std::uint32_t>(order == Order::Rate ? ConvertRate(single) : single));
    if (order == Order::Rate)
        std::reverse(place.begin(), place.end());
    return {};
}

std::string ShowElement(ByteView bytes, Order order)
{
    switch (order) {
    case Order::Network:
        return fmt::format("{}", LoadNet(bytes));
    case Order::Address:
        return fmt::format("{}.{}.{}.{}", bytes[0], bytes[1], bytes[2], bytes[3]);
    case Order::Float:
        return fmt::format("{}", std::bit_cast<float>(static_cast<std::uint32_t>(LoadNet(bytes))));
    case Order::Rate: {
        const std::array<std::uint8_t, 4> turned{bytes[3], bytes[2], bytes[1], bytes[0]};
        return fmt::format("{}", ConvertRate(std::bit_cast<float>(static_cast<std::uint32_t>(LoadNet(turned)))));
    }
    case Order::Raw:
        break;
    }
    return bytes.size() == 1 ? fmt::format("{}", bytes[0]) : fmt::format("{:02x}", fmt::join(bytes, ""));
}

} // namespace

std::span<const Layout> AllLayouts()
{
    static const std::vector<Layout> layouts = UnfoldAll();
    return layouts;
}

std::span<const ListLayout> AllListLayouts()
{
    return WireLists();
}

const Layout *FindLayout(std::string_view name)
{
    const auto layouts = AllLayouts();
    const auto found =
        std::find_if(layouts.begin(), layouts.end(), [&](const Layout &layout) { return layout.name == name; });
    return found == layouts.end() ? nullptr : &*found;
}

const ListLayout *FindListLayout(std::string_view name)
{
    const auto lists = AllListLayouts();
    const auto found =
        std::find_if(lists.begin(), lists.end(), [&](const ListLayout &list) { return list.name == name; });
    return found == lists.end() ? nullptr : &*found;
}

const Layout &LayoutNamed(std::string_view name)
{
    const Layout *layout = FindLayout(name);
    if (layout == nullptr)
        throw std::logic_error(fmt::format("there is no layout {}", name));
    return *layout;
}

const Field *FindField(const Layout &layout, std::string_view name, const KindLookup &kinds)
{
    const auto found = std::find_if(layout.fields.begin(), layout.fields.end(), [&](const Field &field) {
        return field.name == name && (!field.form || Holds(*field.form, kinds));
    });
    return found == layout.fields.end() ? nullptr : &*found;
}

KindLookup KindsOf(const Record &record)
{
    return [&record](std::string_view name) -> std::uint64_t {
        const auto found = record.find(name);
        if (found == record.end() || !std::holds_alternative<std::uint64_t>(found->second))
            return 0;
        return std::get<std::uint64_t>(found->second);
    };
}

KindLookup KindsOf(const Layout &layout, ByteView image)
{
    return [&layout, image](std::string_view name) -> std::uint64_t {
        for (const Field &field : layout.fields)
            if (field.name == name)
                return LoadNet(image.subspan(field.offset, field.width));
        return 0;
    };
}

std::string StoreField(std::span<std::uint8_t> image, const Field &field, const Value &value)
{
    const auto place = image.subspan(field.offset, field.width * field.count);
    if (field.count > 1) {
        const auto *numbers = std::get_if<std::vector<std::uint64_t>>(&value);
        if (numbers == nullptr)
            return fmt::format("must be an array of up to {} numbers", field.count);
        if (numbers->size() > field.count)
            return fmt::format("has {} numbers, the field has room for {}", numbers->size(), field.count);
        for (std::size_t i = 0; i < numbers->size(); i++)
            if (auto problem = StoreNumber(place.subspan(i * field.width, field.width), (*numbers)[i]);
                !problem.empty())
                return problem;
        return {};
    }
    if (const auto *bytes = std::get_if<Bytes>(&value))
        return field.order == Order::Raw ? StoreBytes(place, *bytes) : "must be a number, not bytes";
    if (std::holds_alternative<std::vector<std::uint64_t>>(value))
        return "must be one value, not an array";
    if (field.order == Order::Float || field.order == Order::Rate)
        return StoreReal(place, field.order, ToDouble(value));
    if (std::holds_alternative<double>(value))
        return "must be a whole number";
    if (field.order == Order::Raw && field.width > 1)
        return "must be bytes, as hexadecimal text";
    return StoreNumber(place, std::get<std::uint64_t>(value));
}

std::string ShowField(ByteView image, const Field &field)
{
    if (field.secret)
        return "********";
    if (field.count == 1)
        return ShowElement(image.subspan(field.offset, field.width), field.order);
    std::vector<std::string> elements;
    for (std::size_t i = 0; i < field.count; i++)
        elements.push_back(ShowElement(image.subspan(field.offset + i * field.width, field.width), field.order));
    return fmt::format("[{}]", fmt::join(elements, ","));
}

Bytes Encode(const Layout &layout, const Record &record)
{
    Bytes image(layout.size);
    const KindLookup kinds = KindsOf(record);
    for (const auto &[name, value] : record) {
        const Field *field = FindField(layout, name, kinds);
        if (field == nullptr)
            throw std::invalid_argument(fmt::format("{}: no such field in this form of {}", name, layout.name));
        if (const auto problem = StoreField(image, *field, value); !problem.empty())
            throw std::invalid_argument(fmt::format("{}: {}", name, problem));
    }
    return image;
}

Bytes EncodeList(const ListLayout &list, std::span<const Record> entries)
{
    const Layout &entry = LayoutNamed(list.entry);
    Bytes image;
    AppendNet(image, entries.size(), list.countWidth);
    for (const Record &record : entries) {
        const Bytes bytes = Encode(entry, record);
        image.insert(image.end(), bytes.begin(), bytes.end());
    }
    return image;
}

bool GapsAreZero(const Layout &layout, ByteView image)
{
    Bytes rest(image.begin(), image.end());
    for (const Field &field : layout.fields)
        std::fill_n(rest.begin() + static_cast<std::ptrdiff_t>(field.offset), field.width * field.count,
                    std::uint8_t{0});
    return std::all_of(rest.begin(), rest.end(), [](std::uint8_t byte) { return byte == 0; });
}

std::uint64_t LoadNet(ByteView bytes)
{
    std::uint64_t number = 0;
    for (const std::uint8_t byte : bytes)
        number = number << 8 | byte;
    return number;
}

void StoreNet(std::span<std::uint8_t> bytes, std::uint64_t number)
{
    for (auto place = bytes.rbegin(); place != bytes.rend(); ++place) {
        *place = static_cast<std::uint8_t>(number);
        number >>= 8;
    }
}

void AppendNet(Bytes &bytes, std::uint64_t number, std::size_t width)
{
    bytes.resize(bytes.size() + width);
    StoreNet(std::span(bytes).last(width), number);
}

} // namespace rsvpsimd
