// Prepares a handful of rows of each kind, with lists of different lengths, that a table then repeats under counted
// keys. Every field gets a number of its own, so that a reader who mixes up two fields is found out.
#include "generator.h"

#include <algorithm>
#include <charconv>
#include <fmt/format.h>
#include <stdexcept>

namespace rsvpsimd {

namespace {

constexpr std::size_t kVariants = 5;
constexpr std::string_view kPlainSuffix = "-plain";
constexpr std::uint64_t kNetwork = 0x0A000000; // 10.0.0.0

// A number that fits the field and is different for neighbours.
Value ValueFor(const Field &field, std::size_t seed)
{
    if (field.count > 1) {
        std::vector<std::uint64_t> numbers;
        for (std::size_t i = 0; i < field.count; i++)
            numbers.push_back(seed % 200 + i);
        return numbers;
    }
    switch (field.order) {
    case Order::Address:
        return kNetwork + seed;
    case Order::Float:
    case Order::Rate:
        return static_cast<double>(125000 * (seed % 8 + 1));
    case Order::Network:
        return std::uint64_t{seed % 250};
    case Order::Raw:
        break;
    }
    if (field.width == 1)
        return std::uint64_t{seed % 250};
    return Bytes(field.width, static_cast<std::uint8_t>(seed));
}

// Fields that say which form an object has, and the role that says where a tunnel begins.
std::optional<std::uint64_t> ChoiceFor(std::string_view name, std::size_t variant)
{
    if (name == "tunnelRole")
        return variant % 3 + 1;
    if (name.ends_with("labelRequest.kind") || name.ends_with("sessionAttr.kind"))
        return variant % 4;
    return std::nullopt;
}

Record FillFields(const Layout &layout, const std::string &prefix, std::size_t variant)
{
    Record own;
    for (const Field &field : layout.fields)
        if (const auto choice = ChoiceFor(field.name, variant))
            own.insert_or_assign(field.name, Value(*choice));
    std::size_t seed = variant + 1;
    for (const Field &field : layout.fields)
        if (FindField(layout, field.name, KindsOf(own)) == &field)
            own.try_emplace(field.name, ValueFor(field, seed++));
    Record record;
    for (auto &[name, value] : own)
        record.emplace(prefix + name, std::move(value));
    return record;
}

// Recorded routes alternate between an address and a label, as a route with label recording does.
Block EntryFor(std::string_view layout, std::size_t number)
{
    Block entry;
    if (layout == "hopList") {
        const bool label = number % 2 == 1;
        entry.fields.emplace("kind", std::uint64_t{label ? 3U : 1U});
        entry.fields.emplace(label ? "label" : "address", label ? 1000 + number : kNetwork + number);
    } else if (FindListLayout(layout) != nullptr) {
        entry.fields.emplace("value", kNetwork + number);
    } else {
        entry.fields = FillFields(LayoutNamed(layout), "", number);
    }
    return entry;
}

void FillLists(Block &block, std::span<const ListKind> kinds, std::size_t variant)
{
    std::size_t place = 0;
    for (const ListKind &kind : kinds) {
        const std::size_t length = (variant + place++) % kVariants + 1;
        if (kind.shape == Shape::Text) {
            block.texts.emplace(kind.name, fmt::format("lsp-{}", variant));
            continue;
        }
        std::vector<Block> &list = block.lists[std::string(kind.name)];
        for (std::size_t i = 0; i < length; i++) {
            list.push_back(EntryFor(kind.layout, i));
            FillLists(list.back(), kind.children, variant + i);
        }
    }
}

EncodedRow MakeVariant(const RowKind &kind, std::size_t variant, bool plain)
{
    Block block;
    for (const Part &part : kind.parts) {
        const std::string prefix = part.prefix.empty() ? "" : std::string(part.prefix) + ".";
        block.fields.merge(FillFields(LayoutNamed(part.layout), prefix, variant));
    }
    // A row is found by its number: the rest of the key is the same in all of them.
    for (const std::string_view key : kind.keyFields)
        for (auto &[name, value] : FillFields(LayoutNamed(kind.parts.front().layout), "", 0))
            if (name == key || name.starts_with(fmt::format("{}.", key)))
                block.fields.insert_or_assign(name, value);
    if (!plain)
        FillLists(block, kind.lists, variant);
    return EncodeRow(kind, block);
}

} // namespace

void MakeRows(Device &device, std::string_view specification)
{
    const std::size_t equals = std::min(specification.find('='), specification.size());
    std::string_view name = specification.substr(0, equals);
    const bool plain = name.ends_with(kPlainSuffix);
    if (plain)
        name.remove_suffix(kPlainSuffix.size());
    const RowKind *kind = FindRowKind(name);
    if (kind == nullptr) {
        std::vector<std::string_view> names;
        for (const RowKind &known : AllRowKinds())
            names.push_back(known.name);
        throw std::invalid_argument(
            fmt::format("\"{}\" is no kind of row; the kinds are {}", name, fmt::join(names, ", ")));
    }
    const std::string_view digits = specification.substr(std::min(equals + 1, specification.size()));
    std::uint32_t count = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), count);
    if (digits.empty() || error != std::errc{} || end != digits.data() + digits.size() || count > kMostRows)
        throw std::invalid_argument(
            fmt::format("{}: \"{}\" is not a number of rows from 0 to {}", name, digits, kMostRows));
    std::vector<EncodedRow> variants;
    for (std::size_t variant = 0; variant < kVariants; variant++)
        variants.push_back(MakeVariant(*kind, variant, plain));
    device.Rows(*kind).Make(std::move(variants), count);
}

} // namespace rsvpsimd
