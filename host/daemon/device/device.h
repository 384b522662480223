// The rule of this room: it holds what the daemon knows, and changes and finds it by the bytes of the wire. It knows
// neither clients nor files. This header has the device as a whole: its tables, the records of the whole daemon, the
// counts. Commands change it, reads show it.
#ifndef HOST_DAEMON_DEVICE_DEVICE_H
#define HOST_DAEMON_DEVICE_DEVICE_H

#include "host/daemon/device/commands.h"
#include "host/daemon/device/row_kinds.h"
#include "host/daemon/device/table.h"

namespace rsvpsimd {

// A fixed record as it travels.
class Image {
public:
    Image(LayoutRef layout, const Record &record) : bytes_(Encode(*layout, record)) {}

    ByteView View() const { return bytes_; }
    std::span<uint8_t> View() { return bytes_; }
    std::span<uint8_t> Place(Extent field) { return std::span(bytes_).subspan(field.offset, field.size); }

private:
    Bytes bytes_;
};

// Adds 1 to the 32-bit number at the start of `place`.
void CountUp(std::span<uint8_t> place);

// The counters of the global record: what a reset of statistics clears.
inline constexpr std::array kGlobalStatistics{FieldAt("globalInfo", "counters1"), FieldAt("globalInfo", "statWord1"),
                                              FieldAt("globalInfo", "statWord2"), FieldAt("globalInfo", "statWord3"),
                                              FieldAt("globalInfo", "statWord4"), FieldAt("globalInfo", "counters2")};

// The items that ask for the two records of the whole daemon.
inline constexpr uint16_t kDebugItem = 2;
inline constexpr uint16_t kGlobalItem = 6;

// The plain counts. Unless the scenario gives one, it is the number of rows of a kind.
struct Count {
    std::string_view name;
    uint16_t item = 0;
    RowKindRef derivedFrom;
};
std::span<const Count> AllCounts();

class Device {
public:
    Device();

    Table &Rows(const RowKind &kind) { return tables_.at(kind.requestItem); }
    Table &Rows(RowKindRef kind) { return Rows(*kind); }

    uint32_t CountOf(const Count &count);
    void SetCount(std::string_view name, uint32_t number) { counts_.insert_or_assign(std::string(name), number); }

    const std::map<std::string, uint32_t, std::less<>> &GivenCounts() const { return counts_; }

    // What the daemon starts with, and what undoing a global setting goes back to.
    void SetGlobal(const Record &record);
    void SetDebug(const Record &record) { debug_ = Image("debugInfo", record); }
    Image &Global() { return global_; }
    Image &Debug() { return debug_; }

    // Carries out a command whose frame and lengths have been checked. `key` is the interface or peer, if there is
    // one.
    uint32_t Apply(const Command &command, uint8_t op, ByteView key, ByteView value);

private:
    uint32_t ApplyToRow(const RowKind &kind, const Command &command, uint8_t op, ByteView number, ByteView value);
    void NoteInterface(const Command &command, uint8_t op, ByteView number, std::span<uint8_t> row);
    void ApplyDebug(uint8_t op, ByteView value);
    uint32_t ResetStatistics(uint64_t interface);
    uint32_t ResetAuth(ByteView key);

    std::map<uint16_t, Table> tables_;
    std::map<std::string, uint32_t, std::less<>> counts_;
    Image global_;
    Image undoneGlobal_; // what an undo copies back
    Image debug_;
};

} // namespace rsvpsimd

#endif
