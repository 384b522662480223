// Carries out commands. A setting is copied, as it came, to the place where a read will show it; undoing it copies
// the place back from a record that was never touched.
#include "device.h"

#include <algorithm>
#include <array>

namespace rsvpsimd {

namespace {

// Debug switches of these two types are bound to one session, and each of them keeps it in a place of its own.
constexpr std::uint64_t kDebugFirstSession = 16;
constexpr std::uint64_t kDebugSecondSession = 64;

// A client that sets interface after interface must not fill the memory.
constexpr std::size_t kMostKeptRows = 100'000;

constexpr std::array kCounts{
    Count{"upLspNumber", 100, "crlsp"},
    Count{"frrIfNum", 109, "interface"},
    Count{"frrActiveIfNum", 110, "facility"},
    Count{"actBypassTunnels", 111, "facility"},
};

// Timers in seconds as they are before anyone sets them: refresh every 30, state lives for 3 refreshes, a hello
// every 9 and a neighbour lost after 4 of them; RSVP is on.
Record DefaultGlobal()
{
    return {{"settingBytes", Bytes{3, 9, 4, 0}},
            {"settingShort", std::uint64_t{30}},
            {"settingWord1", std::uint64_t{48}},
            {"settingBytes2", Bytes{1, 0}}};
}

Bytes RowKey(const RowKind &kind, ByteView number)
{
    Bytes key(number.begin(), number.end());
    key.resize(LayoutNamed(kind.keyLayout).size);
    return key;
}

EncodedRow NewRow(const RowKind &kind, ByteView number)
{
    Block block;
    block.fields.emplace(kind.numbered, LoadNet(number));
    return EncodeRow(kind, block);
}

const RowKind &RowsOf(Target target)
{
    if (target == Target::Interface)
        return *FindRowKind("interface");
    return *FindRowKind(target == Target::Neighbour ? "nbr" : "auth");
}

} // namespace

std::span<const Count> AllCounts()
{
    return kCounts;
}

Image::Image(std::string_view layout, const Record &record)
    : layout_(&LayoutNamed(layout)), bytes_(Encode(*layout_, record))
{
}

std::span<std::uint8_t> Image::Place(std::string_view field)
{
    const Extent extent = ExtentOf(*layout_, field);
    return std::span(bytes_).subspan(extent.offset, extent.size);
}

void Image::Add(std::string_view field, std::size_t index, std::uint64_t number)
{
    const auto place = Place(field).subspan(4 * index, 4);
    StoreNet(place, LoadNet(place) + number);
}

Device::Device() : global_("globalInfo", {}), undoneGlobal_("globalInfo", {}), debug_("debugInfo", {})
{
    for (const RowKind &kind : AllRowKinds())
        tables_.emplace(kind.requestItem, Table(kind));
    SetGlobal({});
}

std::uint32_t Device::CountOf(const Count &count)
{
    const auto given = counts_.find(count.name);
    return given != counts_.end() ? given->second : static_cast<std::uint32_t>(Rows(count.derivedFrom).Size());
}

void Device::SetGlobal(const Record &record)
{
    Record merged = record;
    merged.merge(DefaultGlobal());
    global_ = undoneGlobal_ = Image("globalInfo", merged);
    undoneGlobal_.Place("settingBytes2")[0] = 0; // RSVP itself is on from the start and can only be undone
}

std::uint32_t Device::Apply(const Command &command, std::uint8_t op, ByteView key, ByteView value)
{
    switch (command.target) {
    case Target::Global:
        Store(global_.View(), undoneGlobal_.View(), LayoutNamed("globalInfo"), command, op, value);
        return kOk;
    case Target::Interface:
    case Target::Neighbour:
    case Target::Auth:
        return ApplyToRow(RowsOf(command.target), command, op, key, value);
    case Target::Debug:
        ApplyDebug(op, value);
        return kOk;
    case Target::ResetStatistics:
        return ResetStatistics(LoadNet(value.first(4)));
    case Target::ResetAuth:
        return ResetAuth(value.first(8));
    }
    return kUnknownItem;
}

std::uint32_t Device::ApplyToRow(const RowKind &kind, const Command &command, std::uint8_t op, ByteView number,
                                 ByteView value)
{
    Table &table = Rows(kind);
    const Bytes key = RowKey(kind, number);
    if (command.makesRow && op == kUndo) {
        table.Remove(key);
        if (command.target == Target::Interface)
            Rows("ifconfig").Remove(key);
        return kOk;
    }
    if (table.Edit(key) == nullptr) {
        if (op == kUndo)
            return kOk; // what was never set is undone already
        if (table.Kept() >= kMostKeptRows)
            return kNoRoom;
        table.Insert(NewRow(kind, number));
    }
    const Layout &layout = LayoutNamed(kind.parts.front().layout);
    const auto row = std::span(*table.Edit(key)).subspan(kItemHeaderSize, layout.size);
    Store(row, Bytes(layout.size), layout, command, op, value);
    if (command.target == Target::Interface)
        NoteInterface(command, op, number, row);
    return kOk;
}

void Device::Store(std::span<std::uint8_t> record, ByteView undone, const Layout &layout, const Command &command,
                   std::uint8_t op, ByteView value)
{
    // A switch is one byte. A pair of numbers fills the named field and the one behind it.
    const Layout &form = LayoutNamed(command.layout);
    const bool isSwitch = form.fields.empty();
    const std::size_t used =
        isSwitch ? 1 : form.fields.back().offset + form.fields.back().width * form.fields.back().count;
    const std::size_t offset = ExtentOf(layout, command.field).offset + command.index;
    const Bytes on{1};
    const ByteView from = op == kUndo ? undone.subspan(offset, used) : isSwitch ? ByteView(on) : value.first(used);
    std::ranges::copy(from, record.subspan(offset).begin());
}

// The second view of an interface: what is switched on there, as bits of one number. Also its own count of commands.
void Device::NoteInterface(const Command &command, std::uint8_t op, ByteView number, std::span<std::uint8_t> row)
{
    const auto taken = row.subspan(ExtentOf(LayoutNamed("ifInfo"), "counters1.countsA").offset, 4);
    StoreNet(taken, LoadNet(taken) + 1);
    Table &table = Rows("ifconfig");
    if (table.Edit(number) == nullptr)
        table.Insert(NewRow(table.Kind(), number));
    const auto bits = std::span(*table.Edit(number))
                          .subspan(kItemHeaderSize + ExtentOf(LayoutNamed("ifConfig"), "ifConfig").offset, 2);
    const std::uint64_t others = LoadNet(bits) & ~std::uint64_t{command.flag};
    StoreNet(bits, op == kUndo ? others : others | command.flag);
}

void Device::ApplyDebug(std::uint8_t op, ByteView value)
{
    const ByteView session = value.first(ExtentOf(LayoutNamed("debugSwitch"), "session").size);
    const std::uint64_t type = LoadNet(value.subspan(session.size()));
    const auto flags = debug_.Place("debugFlags");
    const std::uint64_t others = LoadNet(flags) & ~type;
    StoreNet(flags, op == kUndo ? others : others | type);
    if (type != kDebugFirstSession && type != kDebugSecondSession)
        return;
    const auto bound = debug_.Place(type == kDebugFirstSession ? "session1" : "session2");
    if (op == kUndo)
        std::ranges::fill(bound, std::uint8_t{0});
    else
        std::ranges::copy(session, bound.begin());
}

// 0 means the whole daemon, any other number the interface of that index.
std::uint32_t Device::ResetStatistics(std::uint64_t interface)
{
    if (interface == 0) {
        for (const auto *name : {"counters1", "statWord1", "statWord2", "statWord3", "statWord4", "counters2"})
            std::ranges::fill(global_.Place(name), std::uint8_t{0});
        return kOk;
    }
    Bytes key;
    AppendNet(key, interface, 4);
    Bytes *body = Rows("interface").Edit(key);
    if (body == nullptr)
        return kNoSuchRow;
    for (const auto *name : {"counters1", "counters2"}) {
        const Extent extent = ExtentOf(LayoutNamed("ifInfo"), name);
        std::ranges::fill(std::span(*body).subspan(kItemHeaderSize + extent.offset, extent.size), std::uint8_t{0});
    }
    return kOk;
}

// The sequence numbers of the entry start again; its key and settings stay.
std::uint32_t Device::ResetAuth(ByteView key)
{
    Bytes *body = Rows("auth").Edit(key);
    if (body == nullptr)
        return kNoSuchRow;
    for (const auto *name : {"authEntryLong0", "authEntryLong1"}) {
        const Extent extent = ExtentOf(LayoutNamed("auth"), name);
        std::ranges::fill(std::span(*body).subspan(kItemHeaderSize + extent.offset, extent.size), std::uint8_t{0});
    }
    return kOk;
}

} // namespace rsvpsimd
