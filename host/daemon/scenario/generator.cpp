// Prepares a few rows of each kind, with lists of different lengths, which a table then repeats under numbered keys.
// Neighbouring fields get different values, so that a reader that mixes them up is caught.
#include "host/daemon/scenario/generator.h"

#include "host/text.h"

#include <fmt/format.h>
#include <stdexcept>

namespace rsvpsimd {

namespace {

constexpr size_t kVariants = 5;
constexpr std::string_view kPlainSuffix = "-plain";
constexpr uint64_t kNetwork = 0x0A000000; // 10.0.0.0

// A value that fits the field and differs from that of its neighbours.
Value ValueFor(const Field &field, size_t seed)
{
    if (field.count > 1) {
        std::vector<uint64_t> numbers;
        for (size_t i = 0; i < field.count; ++i)
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
        return uint64_t{seed % 250};
    case Order::Raw:
        break;
    }
    if (field.width == 1)
        return uint64_t{seed % 250};
    return Bytes(field.width, static_cast<uint8_t>(seed));
}

// Fields whose numbers stand for something: which form an object has, a state, a role, an address.
struct Choice {
    std::string_view name;
    uint64_t first;
    uint64_t count; // the variants have the numbers from the first on, in turn
};
constexpr Choice kChoices[] = {
    {"labelRequest.kind", 0, 4},
    {"sessionAttr.kind", 0, 4},
    {"authEndBytes", 0x0020, 1},
    {"authEntryBytes", 0, 1},
    {"authEntryShort", 0, 2},
    {"cHopWord0", 1, 2},
    {"cHopWord1", 32, 1},
    {"extArHopBytes", 0x07010000, 1},
    {"facilityWord4", kNetwork + 1, 1},
    {"facilityWord5", kNetwork + 2, 1},
    {"facilityWord9", 1, 3},
    {"frrWord3", 1, 2},
    {"frrWord4", 4, 4},
    {"frrWord5", 0, 4},
    {"holdingPriority", 0, 4},
    {"hopAddrBytes", kNetwork + 1, kVariants},
    {"hopAddrKind", 1, 1},
    {"ifBytes1", 0x0100, 2},
    {"ifBytes2", 0x0002, 1},
    {"ifConfig", 1, 4},
    {"keyWord1", kNetwork + 1, 1},
    {"keyWord2", kNetwork + 2, 1},
    {"lspByte0", 1, 2},
    {"nbrBytes", 0x01000000, 1},
    {"nbrWord3", 1, 3},
    {"pathWord0", kNetwork + 1, kVariants},
    {"pathWord1", kNetwork + 6, kVariants},
    {"setupPriority", 4, 4},
    {"style", 0x12, 1},
    {"subByte", 1, 2},
    {"tailByte0", 1, 2},
    {"tailByte1", 1, 3},
    {"tailByte2", 0, 3},
    {"tunnelByte", 0, 2},
    {"tunnelRole", 1, 3},
    {"tunnelShort0", 4, 4},
    {"tunnelShort1", 0, 4},
    {"tunnelTail", 0x0101, 2},
    {"tunnelWord2", kNetwork + 1, 1},
    {"tunnelWord3", kNetwork + 2, 1},
};

std::optional<Value> ChoiceFor(const Field &field, size_t variant)
{
    const auto *choice = std::ranges::find_if(kChoices, [&](const Choice &one) {
        return field.name == one.name || field.name.ends_with(fmt::format(".{}", one.name));
    });
    if (choice == std::end(kChoices))
        return std::nullopt;
    const uint64_t number = choice->first + variant % choice->count;
    if (field.order != Order::Raw || field.width == 1)
        return number;
    Bytes bytes(field.width); // the number is at its front
    StoreNet(std::span(bytes).first(std::min<size_t>(field.width, 4)), number);
    return bytes;
}

Record FillFields(const Layout &layout, const std::string &prefix, size_t variant)
{
    Record own;
    for (const Field &field : layout.fields)
        if (auto choice = ChoiceFor(field, variant); choice && !field.form)
            own.emplace(field.name, std::move(*choice));
    // Now the form of each object is known.
    size_t seed = variant + 1;
    for (const Field &field : layout.fields)
        if (FindField(layout, field.name, KindsOf(own)) == &field)
            own.try_emplace(field.name, ChoiceFor(field, variant).value_or(ValueFor(field, seed++)));
    Record record;
    for (auto &[name, value] : own)
        record.emplace(prefix + name, std::move(value));
    return record;
}

// Recorded routes alternate between an address and a label, as they do with label recording.
Block EntryFor(const ListKind &kind, size_t number)
{
    Block entry;
    if (kind.list == ListRef("hopList")) {
        const bool label = number % 2 == 1;
        entry.fields.emplace(FieldName("hopEntry", "kind"), uint64_t{label ? 3U : 1U});
        entry.fields.emplace(label ? FieldName("hopEntry", "label") : FieldName("hopEntry", "address"),
                             label ? 1000 + number : kNetwork + number);
    } else if (kind.shape == Shape::Counted) {
        entry.fields.emplace(FieldName("routeEntry", "value"), kNetwork + number);
    } else {
        entry.fields = FillFields(**kind.entry, "", number);
    }
    return entry;
}

void FillLists(Block &block, std::span<const ListKind> kinds, size_t variant)
{
    size_t place = 0;
    for (const ListKind &kind : kinds) {
        const size_t length = (variant + place++) % kVariants + 1;
        if (kind.shape == Shape::Text) {
            block.texts.emplace(kind.name, fmt::format("lsp-{}", variant));
            continue;
        }
        std::vector<Block> &list = block.lists[std::string(kind.name)];
        for (size_t i = 0; i < length; ++i) {
            list.push_back(EntryFor(kind, i));
            FillLists(list.back(), kind.children, variant + i);
        }
    }
}

EncodedRow MakeVariant(const RowKind &kind, size_t variant, bool plain)
{
    Block block;
    for (const Part &part : kind.parts)
        block.fields.merge(FillFields(*part.layout, PrefixOf(part), variant));
    // Rows are told apart by their number alone, so the rest of the key is the same in all of them.
    for (const std::string_view key : kind.keyFields)
        for (auto &[name, value] : FillFields(*kind.RowLayout(), "", 0))
            if (name == key || name.starts_with(fmt::format("{}.", key)))
                block.fields.insert_or_assign(name, value);
    if (!plain)
        FillLists(block, kind.lists, variant);
    return EncodeRow(kind, block);
}

} // namespace

void MakeRows(Device &device, std::string_view name, uint32_t count)
{
    const bool plain = name.ends_with(kPlainSuffix);
    if (plain)
        name.remove_suffix(kPlainSuffix.size());
    const RowKind *kind = FindRowKind(name);
    if (kind == nullptr) {
        std::vector<std::string_view> names;
        std::ranges::transform(AllRowKinds(), std::back_inserter(names), &RowKind::name);
        throw std::invalid_argument(
            fmt::format("\"{}\" is not a kind of row; the kinds are {}", name, fmt::join(names, ", ")));
    }
    std::vector<EncodedRow> variants;
    for (size_t variant = 0; variant < kVariants; ++variant)
        variants.push_back(MakeVariant(*kind, variant, plain));
    device.Rows(*kind).Make(std::move(variants), count);
}

void MakeRows(Device &device, std::string_view request)
{
    const std::string_view name = rsvp_host::CutOff(request, "=");
    const auto count = rsvp_host::ReadDecimal(request, kMostRows);
    if (!count)
        throw std::invalid_argument(
            fmt::format("{}: \"{}\" is not a number of rows from 0 to {}", name, request, kMostRows));
    MakeRows(device, name, static_cast<uint32_t>(*count));
}

} // namespace rsvpsimd
