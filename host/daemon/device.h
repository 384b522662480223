// Everything the daemon knows about its device: the tables, the records of the whole daemon, the counts that were
// given to it. Commands change it, reads show it.
#pragma once

#include "commands.h"
#include "table_engine.h"

namespace rsvpsimd {

// A fixed record as it travels, with its fields in reach by name.
class Image {
public:
    Image(std::string_view layout, const Record &record);

    ByteView View() const { return bytes_; }
    std::span<std::uint8_t> View() { return bytes_; }
    std::span<std::uint8_t> Place(std::string_view field);
    void Add(std::string_view field, std::size_t index, std::uint64_t number = 1); // to a 32-bit counter

private:
    const Layout *layout_;
    Bytes bytes_;
};

// The two reads of one record that there is once.
inline constexpr std::uint16_t kDebugItem = 2;
inline constexpr std::uint16_t kGlobalItem = 6;

// The four plain counts. What the scenario does not give is derived from the tables.
struct Count {
    std::string_view name;
    std::uint16_t item = 0;
    std::string_view derivedFrom; // a kind of rows
};
std::span<const Count> AllCounts();

class Device {
public:
    Device();

    Table &Rows(const RowKind &kind) { return tables_.at(kind.requestItem); }
    Table &Rows(std::string_view kind) { return Rows(*FindRowKind(kind)); }

    std::uint32_t CountOf(const Count &count);
    void SetCount(std::string_view name, std::uint32_t number)
    {
        counts_.insert_or_assign(std::string(name), number);
    }

    // What the daemon starts with; an undo of a global setting goes back to it.
    void SetGlobal(const Record &record);
    void SetDebug(const Record &record) { debug_ = Image("debugInfo", record); }
    Image &Global() { return global_; }
    ByteView Debug() const { return debug_.View(); }

    // Carries out a command whose frame and lengths have been checked. `key` is the interface or peer, if any.
    std::uint32_t Apply(const Command &command, std::uint8_t op, ByteView key, ByteView value);

private:
    static void Store(std::span<std::uint8_t> record, ByteView undone, const Layout &layout, const Command &command,
                      std::uint8_t op, ByteView value);
    std::uint32_t ApplyToRow(const RowKind &kind, const Command &command, std::uint8_t op, ByteView number,
                             ByteView value);
    void NoteInterface(const Command &command, std::uint8_t op, ByteView number, std::span<std::uint8_t> row);
    void ApplyDebug(std::uint8_t op, ByteView value);
    std::uint32_t ResetStatistics(std::uint64_t interface);
    std::uint32_t ResetAuth(ByteView key);

    std::map<std::uint16_t, Table> tables_;
    std::map<std::string, std::uint32_t, std::less<>> counts_;
    Image global_;
    Image undoneGlobal_; // what an undo copies back
    Image debug_;
};

} // namespace rsvpsimd
