// Carries out commands. A setting is copied, as it came, to the place where a read shows it. Undoing it copies the
// same place back from a record that commands never change.
#include "host/daemon/device/device.h"

namespace rsvpsimd {

namespace {

constexpr std::array kCounts{
    Count{"upLspNumber", 100, "crlsp"},
    Count{"frrIfNum", 109, "interface"},
    Count{"frrActiveIfNum", 110, "facility"},
    Count{"actBypassTunnels", 111, "facility"},
};

// The settings at the start: state lives for 3 refreshes, a hello is sent every 9 seconds and a neighbour is lost
// after 4 of them, a refresh every 30 seconds, DSCP 48, and RSVP is on.
Record DefaultGlobal()
{
    return {{FieldName("globalInfo", "settingBytes"), Bytes{3, 9, 4, 0}},
            {FieldName("globalInfo", "settingShort"), uint64_t{30}},
            {FieldName("globalInfo", "settingWord1"), uint64_t{48}},
            {FieldName("globalInfo", "settingBytes2"), Bytes{1, 0}}};
}

Bytes RowKey(const RowKind &kind, ByteView number)
{
    Bytes key(number.begin(), number.end());
    key.resize(kind.keyLayout->size);
    return key;
}

EncodedRow NewRow(const RowKind &kind, ByteView number)
{
    Block block;
    block.fields.emplace(kind.numbered, LoadNet(number));
    return EncodeRow(kind, block);
}

RowKindRef RowsOf(Target target)
{
    if (target == Target::Interface)
        return "interface";
    return target == Target::Neighbour ? RowKindRef("nbr") : RowKindRef("auth");
}

// The place of a field in the first value of a row.
std::span<uint8_t> PlaceIn(Bytes &body, Extent field)
{
    return std::span(body).subspan(kItemHeaderSize + field.offset, field.size);
}

void Clear(std::span<uint8_t> place)
{
    std::ranges::fill(place, uint8_t{0});
}

// Copies the value, or for an undo the bytes of `undone`, to the place where the setting shows.
void Store(std::span<uint8_t> record, ByteView undone, const Command &command, uint8_t op, ByteView value)
{
    const Extent shown = command.Shown();
    const Bytes on{1};
    ByteView from = command.IsSwitch() ? on : value.first(shown.size);
    if (op == kUndo)
        from = undone.subspan(shown.offset, shown.size);
    std::ranges::copy(from, record.subspan(shown.offset).begin());
}

} // namespace

std::span<const Count> AllCounts()
{
    return kCounts;
}

void CountUp(std::span<uint8_t> place)
{
    StoreNet(place.first(4), LoadNet(place.first(4)) + 1);
}

Device::Device() : global_("globalInfo", {}), undoneGlobal_("globalInfo", {}), debug_("debugInfo", {})
{
    for (const RowKind &kind : AllRowKinds())
        tables_.emplace(kind.requestItem, Table(kind));
    SetGlobal({});
}

uint32_t Device::CountOf(const Count &count)
{
    const auto given = counts_.find(count.name);
    return given != counts_.end() ? given->second : static_cast<uint32_t>(Rows(count.derivedFrom).Size());
}

void Device::SetGlobal(const Record &record)
{
    Record merged = record;
    merged.merge(DefaultGlobal());
    global_ = undoneGlobal_ = Image("globalInfo", merged);
    // RSVP itself is on from the start; its only command is the undo.
    undoneGlobal_.Place(FieldAt("globalInfo", "settingBytes2"))[0] = 0;
}

uint32_t Device::Apply(const Command &command, uint8_t op, ByteView key, ByteView value)
{
    switch (command.target) {
    case Target::Global:
        Store(global_.View(), undoneGlobal_.View(), command, op, value);
        return kOk;
    case Target::Interface:
    case Target::Neighbour:
    case Target::Auth:
        return ApplyToRow(*RowsOf(command.target), command, op, key, value);
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

uint32_t Device::ApplyToRow(const RowKind &kind, const Command &command, uint8_t op, ByteView number, ByteView value)
{
    Table &table = Rows(kind);
    const Bytes key = RowKey(kind, number);
    Table *switches = command.target == Target::Interface ? &Rows("ifconfig") : nullptr;
    const bool removesSwitches = command.makesRow && switches != nullptr && switches->Has(key);
    if (op == kUndo && !table.Has(key) && !removesSwitches)
        return kOk; // it was never set
    if (!table.HasRoomFor(key) || (switches != nullptr && !switches->HasRoomFor(key)))
        return kNoRoom;
    if (command.makesRow && op == kUndo) {
        table.Remove(key);
        if (switches != nullptr)
            switches->Remove(key);
        return kOk;
    }
    if (!table.Has(key))
        table.Insert(NewRow(kind, number));
    const size_t size = kind.RowLayout()->size;
    const auto row = PlaceIn(*table.Edit(key), {0, size});
    Store(row, Bytes(size), command, op, value);
    if (switches != nullptr)
        NoteInterface(command, op, number, row);
    return kOk;
}

// Updates the interface's count of commands, and its row in the table of switches.
void Device::NoteInterface(const Command &command, uint8_t op, ByteView number, std::span<uint8_t> row)
{
    CountUp(row.subspan(FieldAt("ifInfo", "counters1.countsA").offset));
    Table &table = Rows("ifconfig");
    if (table.Edit(number) == nullptr)
        table.Insert(NewRow(table.Kind(), number));
    const auto bits = PlaceIn(*table.Edit(number), FieldAt("ifConfig", "ifConfig"));
    const uint64_t others = LoadNet(bits) & ~uint64_t{command.flag};
    StoreNet(bits, op == kUndo ? others : others | command.flag);
}

void Device::ApplyDebug(uint8_t op, ByteView value)
{
    constexpr Extent kBound{FieldAt("debugSwitch", "session.tunnelEndpoint").offset,
                            FieldAt("debugInfo", "session1").size};
    constexpr Extent kType = FieldAt("debugSwitch", "debugType");
    const uint64_t type = LoadNet(value.subspan(kType.offset, kType.size));
    const auto flags = debug_.Place(FieldAt("debugInfo", "debugFlags"));
    const uint64_t others = LoadNet(flags) & ~type;
    StoreNet(flags, op == kUndo ? others : others | type);
    if (type != kDebugFirstSession && type != kDebugSecondSession)
        return;
    const auto place = debug_.Place(type == kDebugFirstSession ? FieldAt("debugInfo", "session1")
                                                               : FieldAt("debugInfo", "session2"));
    if (op == kUndo)
        Clear(place);
    else
        std::ranges::copy(value.subspan(kBound.offset, kBound.size), place.begin());
}

// 0 means the whole daemon, any other number the interface with that index.
uint32_t Device::ResetStatistics(uint64_t interface)
{
    if (interface == 0) {
        for (const Extent field : kGlobalStatistics)
            Clear(global_.Place(field));
        return kOk;
    }
    Bytes key;
    AppendNet(key, interface, 4);
    Table &table = Rows("interface");
    if (!table.Has(key))
        return kNoSuchRow;
    if (!table.HasRoomFor(key))
        return kNoRoom;
    Bytes &body = *table.Edit(key);
    Clear(PlaceIn(body, FieldAt("ifInfo", "counters1")));
    Clear(PlaceIn(body, FieldAt("ifInfo", "counters2")));
    return kOk;
}

// The entry's sequence numbers start again; its key and settings stay.
uint32_t Device::ResetAuth(ByteView key)
{
    Table &table = Rows("auth");
    if (!table.Has(key))
        return kNoSuchRow;
    if (!table.HasRoomFor(key))
        return kNoRoom;
    Bytes &body = *table.Edit(key);
    Clear(PlaceIn(body, FieldAt("auth", "authEntryLong0")));
    Clear(PlaceIn(body, FieldAt("auth", "authEntryLong1")));
    return kOk;
}

} // namespace rsvpsimd
