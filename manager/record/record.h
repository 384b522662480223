// Every public record and key of the library described once as data. JSON, tables, the detail view and the keys that
// users type all read this one description, so a field that is added to a record is added here and nowhere else.
// Fields that are never written are left out; reserved ones that travel are quiet.
#ifndef MANAGER_RECORD_RECORD_H
#define MANAGER_RECORD_RECORD_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <rsvp_mor.h>
#include <span>
#include <string>
#include <vector>

namespace manager {

enum class FieldKind : uint8_t {
    Number,     // unsigned, host order, 1 to 8 bytes
    Address,    // IPv4 address as a number, shown dotted
    NetNumber,  // a number that nobody converted: most significant byte first
    NetAddress, // an address likewise
    Bytes,      // bytes in their order on the wire, shown as hex text
    Rate,       // IEEE single, most significant byte first
    Float,      // the machine's own float
    Secret,     // key material: shown as "hidden", or as an empty text if all its bytes are zero
    Record,     // a record inside this one
    List,       // pointer to an array of records, followed by a 16-bit count
    Chain,      // pointer to the first of a chain of records, each of which begins with the pointer to the next
    Text,       // pointer to terminated text, or null
};

struct RecordDescription;

/** Limits a field to records whose tag byte says that it is there: the members of a union, for one. */
struct Condition {
    enum class Test : uint8_t { Always, Equal, Different };
    Test test = Test::Always;
    uint8_t tag = 0;
    uint32_t tagOffset = 0;
};

struct Field {
    const char *name;
    FieldKind kind;
    uint32_t offset;
    uint32_t width;                  // bytes of one element
    uint32_t count;                  // elements of an array; 0 for a field that is not an array
    const RecordDescription *record; // what a Record, List or Chain consists of, else null
    uint32_t countOffset;            // of a List: where its count lies
    Condition condition;
    bool isQuiet = false;       // shown only if it is not 0, and not asked for in a key
    const char *unit = nullptr; // of its number, where a standard settles it: "B/s"; "words" are of 32 bits
};

struct RecordDescription {
    const char *name;
    uint32_t size;
    std::span<const Field> fields;
};

/** The description of a record or a key of the public headers, or of a key of the tables' own. */
template <typename Record> const RecordDescription &Describe();

// Every record of the public headers whose fields a user may see. A record that is named here and described nowhere
// does not link.
// clang-format off
#define MANAGER_RECORDS(X) \
    X(RSVP_MOR_AuthEntryKey) \
    X(RSVP_MOR_DebugSwitch) \
    X(RSVP_MOR_DebugInfo) \
    X(RSVP_MOR_StatisticsKey) \
    X(RSVP_MOR_GlobalCounters) \
    X(RSVP_MOR_GlobalInfo) \
    X(RSVP_MOR_IfCounters) \
    X(RSVP_MOR_IfInfo) \
    X(RSVP_MOR_IfConfig) \
    X(RSVP_MOR_NbrKey) \
    X(RSVP_MOR_ReplyNbr) \
    X(RSVP_MOR_AuthWalkKey) \
    X(RSVP_MOR_ReplyAuth) \
    X(RSVP_MOR_FrrFacilityKey) \
    X(RSVP_MOR_ReplyFrrFacility) \
    X(RSVP_MOR_FrrGeneralKey) \
    X(RSVP_MOR_ReplyFrrGeneral) \
    X(RSVP_MOR_ReplyExtArHop) \
    X(RSVP_MOR_TunnelKey) \
    X(RSVP_MOR_ReplyTunnel) \
    X(RSVP_MOR_ReplyCHop) \
    X(RSVP_MOR_ReplyArHop) \
    X(RSVP_MOR_ReplyResource) \
    X(RSVP_MOR_HopEntry) \
    X(RSVP_MOR_RouteEntry) \
    X(RSVP_MOR_Session) \
    X(RSVP_MOR_Hop) \
    X(RSVP_MOR_Sender) \
    X(RSVP_MOR_IfRef) \
    X(RSVP_MOR_SenderTspec) \
    X(RSVP_MOR_FlowSpec) \
    X(RSVP_MOR_AdspecParam) \
    X(RSVP_MOR_Adspec) \
    X(RSVP_MOR_LabelRequest) \
    X(RSVP_MOR_SessionAttrAffinity) \
    X(RSVP_MOR_SessionAttrShort) \
    X(RSVP_MOR_SessionAttr) \
    X(RSVP_MOR_ReplyFSInfo) \
    X(RSVP_MOR_PsbSlot) \
    X(RSVP_MOR_ReplyPsb) \
    X(RSVP_MOR_ReplyRsb) \
    X(RSVP_MOR_ReplyFDInfo) \
    X(RSVP_MOR_ReplyPhsb) \
    X(RSVP_MOR_CrlspKey) \
    X(RSVP_MOR_CrlspPath) \
    X(RSVP_MOR_CrlspTraffic) \
    X(RSVP_MOR_ReplyCrlsp) \
    X(RSVP_MOR_P2mpSession) \
    X(RSVP_MOR_P2mpSender) \
    X(RSVP_MOR_P2mpPathState) \
    X(RSVP_MOR_P2mpResvState) \
    X(RSVP_MOR_P2mpSubGroup) \
    X(RSVP_MOR_P2mpStateKey) \
    X(RSVP_MOR_P2mpPsbSlot) \
    X(RSVP_MOR_P2mpPsbInfo) \
    X(RSVP_MOR_P2mpRsbInfo) \
    X(RSVP_MOR_P2mpCrlspKey) \
    X(RSVP_MOR_P2mpRro) \
    X(RSVP_MOR_P2mpCrlspInfo)
// clang-format on

#define MANAGER_DECLARE(Type) template <> const RecordDescription &Describe<Type>();
MANAGER_RECORDS(MANAGER_DECLARE)
#undef MANAGER_DECLARE

/** All descriptions, in the order of the headers. */
std::span<const RecordDescription *const> AllRecords();

/** Tells whether the record's tag meets the condition. */
bool IsPresent(const Condition &condition, const void *record);

/** Tells whether the record's tag lets the field be there. */
inline bool IsPresent(const Field &field, const void *record)
{
    return IsPresent(field.condition, record);
}

/** Whether all bytes of a field are 0. */
bool IsZero(const Field &field, const void *record);

/** A scalar of a record, found through the records inside it: what can be a table column or a part of a key. */
struct Leaf {
    std::string path; // "session.tunnelEndpoint"
    const Field *field;
    uint32_t offset; // from the start of the outermost record
};

/** The leaves of a record in its order. Arrays, lists and conditional fields are not among them. */
std::vector<Leaf> Leaves(const RecordDescription &description);

/** The path of the field that takes so many bytes from an offset: "session", "key.keyWord0". */
std::string PathAt(const RecordDescription &description, uint32_t offset, uint32_t size);

/** The value at an address of any alignment. */
template <typename T> T Load(const void *at)
{
    T value;
    std::memcpy(&value, at, sizeof(value));
    return value;
}

/** The address `offset` bytes into a record. */
inline const std::byte *At(const void *record, uint32_t offset)
{
    return static_cast<const std::byte *>(record) + offset;
}

/** Calls `look` with each record of a List or a Chain. */
template <typename Look> void ForEachElement(const Field &field, const void *record, const Look &look)
{
    const std::byte *start = At(record, field.offset);
    if (field.kind == FieldKind::Chain) {
        for (const void *node = Load<const void *>(start); node != nullptr; node = Load<const void *>(node))
            look(node);
        return;
    }
    const auto *entries = Load<const std::byte *>(start);
    const auto count = entries == nullptr ? uint16_t{0} : Load<uint16_t>(At(record, field.countOffset));
    for (uint32_t i = 0; i < count; ++i)
        look(static_cast<const void *>(entries + size_t{i} * field.record->size));
}

/** The number of 1, 2, 4 or 8 bytes that lies at an address. */
uint64_t LoadNumber(const void *at, uint32_t width);

/** Where a part of a row's key lies, in the row and in the key. */
struct KeyPart {
    uint32_t offset = 0;
    uint32_t size = 0; // 0 after the last part
    uint32_t keyOffset = 0;
};

} // namespace manager

#endif
