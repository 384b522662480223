// The objects that the agent can serve, as data: numbers, syntaxes and indexes as the modules publish them. What
// fills a column stands in sources.cpp; an object that nothing fills is not instantiated.
#ifndef TOOLS_AGENTX_MIB_H
#define TOOLS_AGENTX_MIB_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace agentx {

using Oid = std::vector<uint32_t>;

enum class Syntax : uint8_t {
    Integer,      // INTEGER, from 0 to the object's greatest value
    Unsigned,     // Unsigned32, likewise
    Identifier,   // Unsigned32 that may be an IPv4 address
    Gauge,        // Gauge32
    Counter,      // Counter32
    Ticks,        // TimeTicks: hundredths of a second
    Interval,     // TimeInterval: hundredths of a second, an INTEGER
    Milliseconds, // INTEGER, saturated
    Octets,       // a number of bytes: INTEGER, saturated
    Burst,        // likewise, Unsigned32
    BitRate,      // bits a second: INTEGER, saturated
    KilobitRate,  // thousands of bits a second: Unsigned32, saturated
    Enumeration,  // INTEGER with words
    Truth,        // TruthValue
    Bits,         // BITS with words
    Text,         // SnmpAdminString
    Address,      // OCTET STRING of an IPv4 address
    LsrId,        // the same with a fixed length, which an index does not tell
    Port,         // OCTET STRING of two bytes
    ResourceRow,  // RowPointer to a row of mplsTunnelResourceTable, by its index
};

/** The greatest INTEGER. */
inline constexpr uint32_t kMostInteger = 0x7fffffff;

/** A TruthValue. */
constexpr uint32_t TruthOf(bool value)
{
    return value ? 1 : 2;
}

/** One word of an enumeration, or of BITS with the number of its bit. */
struct Word {
    uint32_t number;
    std::string_view word;
};

struct Object {
    uint32_t number; // of the column or scalar; 0 for an index object of another table
    std::string_view name;
    Syntax syntax;
    uint32_t greatest = UINT32_MAX;      // a greater value is not served
    std::span<const Word> words = {};    // of an enumeration or of BITS
    std::optional<uint32_t> always = {}; // the value that it has in every row
    bool mayBeSet = false;
};

/** A table, or a group of scalars: that is a table of one row with the index 0. */
struct MibTable {
    std::string_view name;
    std::span<const uint32_t> entry; // what stands before the number of a column
    std::span<const Object> index;   // empty for scalars and for the rows that the agent numbers by itself
    std::span<const Object> objects;

    const Object *Find(std::string_view object) const;
};

extern const MibTable kTunnelScalars;
extern const MibTable kTunnelTable;
extern const MibTable kResourceTable;
extern const MibTable kActualHopTable;
extern const MibTable kComputedHopTable;
extern const MibTable kFrrConstraintsTable;
extern const MibTable kFrrHopTable;
extern const MibTable kFrrScalars;
extern const MibTable kFrrFacilityTable;
extern const MibTable kSessionTable;
extern const MibTable kSenderTable;
extern const MibTable kResvTable;
extern const MibTable kResvFwdTable;
extern const MibTable kIfTable;
extern const MibTable kNbrTable;
extern const MibTable kAgentScalars;
extern const MibTable kCacheTable;

/** All of them, in the order of their object identifiers. */
std::span<const MibTable *const> AllMibTables();

/** The object that is the index of what belongs to an interface, whatever the table. */
inline constexpr std::string_view kIfIndex = "ifIndex";

/** The object of this name in any table, or one of its index objects; null if there is none. */
const Object *FindObject(std::string_view name);

} // namespace agentx

#endif
