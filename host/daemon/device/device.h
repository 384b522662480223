// The room of the device: what the daemon keeps and how it finds it, and no word of who asks. This header has the
// whole of it: the tables, the records of the whole daemon, the counts that were given to it. Commands change it,
// reads show it.
#ifndef HOST_DAEMON_DEVICE_DEVICE_H
#define HOST_DAEMON_DEVICE_DEVICE_H

#include "host/daemon/device/commands.h"
#include "host/daemon/device/row_kinds.h"
#include "host/daemon/device/table.h"

namespace rsvpsimd {

// A fixed record as it travels, with its fields in reach.
class Image {
public:
    Image(LayoutRef layout, const Record &record) : bytes_(Encode(*layout, record)) {}

    ByteView View() const { return bytes_; }
    std::span<uint8_t> View() { return bytes_; }
    std::span<uint8_t> Place(Extent field) { return std::span(bytes_).subspan(field.offset, field.size); }

private:
    Bytes bytes_;
};

// Counts one more in the 32-bit number at the start of `place`.
void CountUp(std::span<uint8_t> place);

// The two reads of one record that there is once.
inline constexpr uint16_t kDebugItem = 2;
inline constexpr uint16_t kGlobalItem = 6;

// The four plain counts. What the scenario does not give is derived from the tables.
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

    // What the daemon starts with; an undo of a global setting goes back to it.
    void SetGlobal(const Record &record);
    void SetDebug(const Record &record) { debug_ = Image("debugInfo", record); }
    Image &Global() { return global_; }
    ByteView Debug() const { return debug_.View(); }

    // Carries out a command whose frame and lengths have been checked. `key` is the interface or peer, if any.
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
