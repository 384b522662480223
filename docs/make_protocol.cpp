// Prints docs/protocol.md. The daemon's own tables are the source: what the daemon answers by is what the document
// says, and a test holds the committed file against a fresh one.
#include "docs/translated.h"
#include "host/daemon/device/device.h"

#include <fmt/format.h>

using namespace rsvpsimd;

namespace {

constexpr std::string_view kIntroduction =
    R"(<!-- Made from the simulated daemon's tables. Do not edit: build the target "protocol" instead. -->
# The management protocol

What travels between the library and the daemon: the frame, every request, and each value byte by byte. The tables
are those by which the simulated daemon reads requests and builds replies. Where the protocol leaves a meaning to
the daemon, this is the simulated daemon's choice; [host.md](host.md) lists those choices.

One request is one message and gets one reply. A reply carries no number of its request: order alone pairs them.

)";

constexpr std::string_view kRules =
    R"(An item type means something only together with the class and the operation of its message. A reply repeats the
class and the operation of its request. A reply with a status other than 0 has no items.

Numbers are unsigned and in network order. How a field reads:

| Form | Meaning |
|---|---|
| number | network order; the library swaps it |
| address | the same; people write it as dotted IPv4 |
| byte | one byte, a small number or a switch |
| bytes | as they stand; nobody swaps them |
| single | IEEE 754 single precision, most significant byte first |
| rate | a whole number whose bytes are reversed, then written as a single, least significant byte first |

Bytes of a value that no field names are 0. So are those of a field whose condition does not hold, unless another field
has its place. The simulated daemon refuses a request that has others.

)";

// What the tables cannot tell, since it is the library's doing.
constexpr std::array kWalkedAlone{RowKindRef("auth"), RowKindRef("crlsp"), RowKindRef("nbr"),
                                  RowKindRef("phsb"), RowKindRef("psb"),   RowKindRef("rsb")};

std::string Translations()
{
    std::string note = "the library gives ";
    for (const auto &[wire, record] : documents::kTranslations)
        note += fmt::format("{} for {}, ", record, wire);
    return fmt::format("{}and {} for any other number", note, documents::kTranslationOfOthers);
}

std::string LinkTo(std::string_view name)
{
    return fmt::format("[{0}](#{0})", name);
}

std::string Link(const Layout &layout)
{
    return layout.size == 0 ? "empty" : LinkTo(layout.name);
}

// Viewers turn a heading into an anchor in lower case, each by rules of its own; this one is the name as it stands.
std::string Anchor(std::string_view layout)
{
    return fmt::format("<a id=\"{0}\"></a>\n### {0}", layout);
}

std::string OpNames(uint32_t ops)
{
    std::string names;
    for (uint8_t op = 0; op <= kHelloTimer; ++op)
        if ((ops >> op & 1) != 0)
            names += fmt::format("{}{} {}", names.empty() ? "" : ", ", op, OpName(op));
    return names;
}

std::string_view FirstKeyName(FirstKey firstKey)
{
    switch (firstKey) {
    case FirstKey::Zero:
        return "a key of zeros";
    case FirstKey::Given:
        return "a key of the caller's own making, whose content does not matter";
    case FirstKey::Empty:
        break;
    }
    return "an item without a value";
}

std::string_view FormName(const Field &field)
{
    switch (field.order) {
    case Order::Network:
        return "number";
    case Order::Address:
        return "address";
    case Order::Float:
        return "single";
    case Order::Rate:
        return "rate";
    case Order::Raw:
        break;
    }
    if (field.secret)
        return "bytes, never printed";
    return field.width == 1 ? "byte" : "bytes";
}

void PrintFrame()
{
    fmt::print("## Frame\n\n| Offset | Bytes | Field |\n|---:|---:|---|\n"
               "| 0 | 1 | class |\n| 1 | 1 | operation |\n"
               "| 2 | 2 | length of the body in bytes; the header is not counted |\n"
               "| 4 | 4 | status; 0 in a request |\n| {} | | body: items |\n\n"
               "A message has at most {} bytes, so that a body has at most {}.\n\n",
               kHeaderSize, RSVP_MOR_MSG_MAX, kBodyMax);
    fmt::print("An item, as the simulated platform lays it out; on a router the platform owns this layout:\n\n"
               "| Offset | Bytes | Field |\n|---:|---:|---|\n| 0 | 2 | type |\n| 2 | 2 | length of the value |\n"
               "| {} | | value; the next item follows without padding |\n\n",
               kItemHeaderSize);
    fmt::print("{}", kRules);
}

void PrintNumbers()
{
    fmt::print("| Class | Name | First item |\n|---:|---|---|\n");
    for (const auto &[msgClass, name] : kClasses) {
        const auto key = KeyItemOf(static_cast<uint8_t>(msgClass));
        fmt::print("| {} | {} | {} |\n", msgClass, name,
                   key ? fmt::format("{}: {}", key->type, Link(*key->layout)) : "");
    }
    fmt::print("\n| Operation | Name |\n|---:|---|\n");
    for (const auto &[op, name] : kOps)
        fmt::print("| {} | {} |\n", op, name);
    fmt::print("\nStatuses of the simulated daemon:\n\n| Status | Meaning |\n|---|---|\n");
    for (const auto &[status, meaning] : kStatuses)
        fmt::print("| 0x{:08x} | {} |\n", status, meaning);
    fmt::print("\n");
}

std::string ShownIn(const Command &command)
{
    const auto record = RecordOf(command.target);
    if (!record)
        return "";
    if (command.field.empty())
        return Link(**record);
    const size_t used = command.Shown().size;
    const size_t room = ExtentOf(*record, command.field).size;
    const std::string part = used < room   ? fmt::format(" from byte {}", command.index)
                             : used > room ? " and behind it"
                                           : "";
    return fmt::format("{} `{}`{}", Link(**record), command.field, part);
}

void PrintCommands()
{
    fmt::print(
        "## Commands\n\nOne item says what is commanded; in the classes interface and peer the key item stands "
        "before it. The reply is a status alone. The last column is the field of a later read in which the "
        "setting shows.\n\n"
        "| Class | Item | Name | Operations | Value | Shows in |\n|---|---:|---|---|---|---|\n");
    for (const Command &command : AllCommands())
        fmt::print("| {} | {} | {} | {} | {} | {} |\n", ClassName(command.msgClass), command.item, command.name,
                   OpNames(command.ops), Link(*command.layout), ShownIn(command));
    fmt::print("\n");
}

void PrintReads()
{
    const auto row = [](uint16_t item, std::string_view name, LayoutRef layout) {
        fmt::print("| {} | {} | {} |\n", item, name, Link(*layout));
    };
    fmt::print("## Reads of one record\n\nClass {} {}, operation {}. The request has one item without a value; the "
               "reply has one item of the same type.\n\n| Item | Name | Reply |\n|---:|---|---|\n",
               +kShow, ClassName(kShow), OpNames(1U << kGet));
    row(kDebugItem, "debug switches", "debugInfo");
    row(kGlobalItem, "global information", "globalInfo");
    for (const Count &count : AllCounts())
        row(count.item, count.name, "count");
    fmt::print("\n");
}

void PrintLists(std::span<const ListKind> lists, int depth)
{
    for (const ListKind &list : lists) {
        const std::string indent(static_cast<size_t>(2 * depth), ' ');
        switch (list.shape) {
        case Shape::Counted:
            fmt::print("{}- item {}, if the row has this list: {}{}\n", indent, list.item, LinkTo((*list.list)->name),
                       list.mayBeEmpty ? "" : ", never with a count of 0");
            break;
        case Shape::Each:
            fmt::print("{}- item {}, one for each entry: {}{}\n", indent, list.item, Link(**list.entry),
                       list.children.empty() ? "" : ", with behind each");
            break;
        case Shape::Text:
            fmt::print("{}- item {}, if there is one: text, the {}, without a closing zero\n", indent, list.item,
                       list.name);
            break;
        }
        PrintLists(list.children, depth + 1);
    }
}

std::string_view WhoSends(const RowKind &kind)
{
    if (std::ranges::any_of(kWalkedAlone, [&](RowKindRef walked) { return walked->name == kind.name; }))
        return "; no function of the library sends the get";
    if (kind.firstKey == FirstKey::Given)
        return "; the caller of the library names the operation";
    return "";
}

void PrintTables()
{
    const uint32_t walk = 1U << kGet | 1U << kGetFirst | 1U << kGetNext;
    const uint32_t ingress = 1U << kGetFirstIngress | 1U << kGetNextIngress;
    fmt::print("## Tables\n\nClass {} {}. The request has one item: the key of the row that is read (get), or of the "
               "row before (the next forms). The reply has the items listed here, in this order. Rows come in the "
               "order of their key bytes.\n\n",
               +kShow, ClassName(kShow));
    for (const RowKind &kind : AllRowKinds()) {
        fmt::print("### Table {}\n\n- request: item {}, {}{}\n- key: {}", kind.name, kind.requestItem,
                   OpNames(walk | (kind.hasIngressWalk ? ingress : 0)), WhoSends(kind), Link(*kind.keyLayout));
        std::string_view separator = ", copied from the row's ";
        for (const std::string_view field : kind.keyFields) {
            fmt::print("{}`{}`", separator, field);
            separator = ", ";
        }
        fmt::print("\n- the first forms carry {}\n- reply:\n", FirstKeyName(kind.firstKey));
        for (const Part &part : kind.parts)
            fmt::print("  - item {}: {}\n", part.item, Link(*part.layout));
        PrintLists(kind.lists, 1);
        fmt::print("\n");
    }
}

std::string Condition(const Field &field)
{
    if (!field.form)
        return "";
    std::string kinds;
    for (size_t i = 0; i < field.form->kinds.size(); ++i)
        if (i == 0 || field.form->kinds[i] != field.form->kinds[i - 1])
            kinds += fmt::format("{}{}", i == 0 ? "" : " or ", field.form->kinds[i]);
    return fmt::format("if `{}` is {}{}", field.form->field, field.form->among ? "" : "not ", kinds);
}

void PrintField(const Field &field, std::string_view name, std::string_view note)
{
    fmt::print("| {} | {} | `{}` | {} | {} |\n", field.offset,
               field.count == 1 ? fmt::format("{}", field.width) : fmt::format("{} x {}", field.count, field.width),
               name, FormName(field), note);
}

void PrintValues()
{
    fmt::print("## Values\n\nFields have the names of the records in the headers.\n\n");
    for (const Layout &layout : AllLayouts()) {
        if (layout.fields.empty())
            continue;
        fmt::print("{}\n\n{} bytes.\n\n| Offset | Bytes | Field | Form | |\n|---:|---:|---|---|---|\n",
                   Anchor(layout.name), layout.size);
        for (const Field &field : layout.fields) {
            const bool translated =
                layout.name == documents::kTranslatedLayout.Spec().name && field.name == documents::kTranslatedField;
            PrintField(field, field.name, translated ? Translations() : Condition(field));
            for (const Field &inner : field.inside)
                PrintField(inner, fmt::format("{}.{}", field.name, inner.name),
                           "inside; the simulated daemon's choice");
        }
        fmt::print("\n");
    }
    fmt::print("## Lists\n\nA count in network order, then as many entries.\n\n");
    for (const ListSpec &list : kListSpecs)
        fmt::print("{}\n\n{} bytes of count{}, then entries: {}\n\n", Anchor(list.name), list.countWidth,
                   list.countWidth > 2 ? ", of which the library reads the last two" : "", Link(*list.entry));
}

} // namespace

int main()
{
    fmt::print("{}", kIntroduction);
    PrintFrame();
    PrintNumbers();
    PrintCommands();
    PrintReads();
    PrintTables();
    PrintValues();
    return std::fflush(stdout) == 0 ? 0 : 1;
}
