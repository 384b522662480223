// The table of operations. Keys and other arguments are constants in read-only memory: a function that wrote to them
// would end the test.
#include "support/operations.h"

#include <cstring>

namespace scripted {

namespace {

// Calls a function with the arguments of a row: on the held session, into a record, with `op` or plainly, whichever
// its parameters allow.
template <auto Function, auto... Arguments>
uint32_t Call([[maybe_unused]] uint32_t op, [[maybe_unused]] Record record)
{
    using Type = decltype(Function);
    if constexpr (std::is_invocable_v<Type, int32_t, decltype(Arguments)..., Record>)
        return Function(HELD, Arguments..., record);
    else if constexpr (std::is_invocable_v<Type, int32_t, uint32_t, decltype(Arguments)..., Record>)
        return Function(HELD, op, Arguments..., record);
    else if constexpr (std::is_invocable_v<Type, decltype(Arguments)..., Record>)
        return Function(Arguments..., record);
    else if constexpr (std::is_invocable_v<Type, uint32_t, decltype(Arguments)...>)
        return Function(op, Arguments...);
    else
        return Function(Arguments...);
}

template <auto Function> void Free(Record record)
{
    Function(record);
}

#define CALL(function, ...) #function, Call < function __VA_OPT__(, ) __VA_ARGS__>

constexpr uint32_t IF = 0x03000102;
constexpr uint32_t PEER = 0x0a000009;

// The pair is the one argument that is written to; its own test stands with the requests.
uint32_t SetReduction(uint32_t op, Record)
{
    uint16_t pair[2] = {258, 772};
    return RSVP_MOR_SetReduction(op, IF, pair);
}

uint32_t SetIfCapability(uint32_t op, Record)
{
    return RSVP_SetIfCapability(IF, op == 1 ? 0 : 1);
}

constexpr uint8_t KEY[68] = {1, 0, 2, 0xff, 0}; // zero bytes inside do not end it
const std::string KEY_HEX = "010002ff" + std::string(128, '0');

constexpr RSVP_MOR_Session session = {0x0a000001, {2, 3}, 0x0405, 0x0a000006};
constexpr RSVP_MOR_Hop hop = {0x0a00000c, 0x0d0e0f10};
constexpr RSVP_MOR_Sender sender = {0x0a000007, {8, 9}, 0x0a0b};
const std::string SESSION_HEX = "0a000001 0203 0405 0a000006";
const std::string HOP_HEX = "0a00000c 0d0e0f10";
const std::string SENDER_HEX = "0a000007 0809 0a0b";

constexpr RSVP_MOR_AuthEntryKey authEntryKey = {1, 2, 3, 4};
constexpr RSVP_MOR_DebugSwitch debugA = {session, 16};
constexpr RSVP_MOR_DebugSwitch debugB = {session, 64};
constexpr RSVP_MOR_DebugSwitch debugPlain = {session, 32};
constexpr RSVP_MOR_DebugSwitch debugBothBits = {session, 80};
constexpr RSVP_MOR_StatisticsKey statisticsKey = {1, 2};
constexpr RSVP_MOR_NbrKey nbrKey = {0x0a000001, 2};
constexpr RSVP_MOR_AuthWalkKey authWalkKey = {0x0a000001, 2};
constexpr RSVP_MOR_FrrFacilityKey facilityKey = {0x04030201, 2, 3, 4, {0x11, 0x12, 0x13, 0x14}, {5, 6, 7, 8}};
constexpr RSVP_MOR_FrrGeneralKey generalKey = {0x04030201, 2, 3};
constexpr RSVP_MOR_TunnelKey tunnelKey = {0x04030201, 2, 3, 4};
constexpr RSVP_MOR_CrlspKey crlspKey = {1, 2, 3, 4, 5, {6, 7, 8, 9}};
constexpr RSVP_MOR_P2mpStateKey stateKey = {1,  2,  3,        {4, 5, 6, 7}, 8,  9,  10, 11, 12,
                                            13, 14, {15, 16}, 17,           18, 19, 20, 21};
constexpr RSVP_MOR_P2mpCrlspKey p2mpCrlspKey = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};

// Only the low half of the item type is sent.
uint32_t GetP2mpPsbInfo(uint32_t op, Record record)
{
    return RSVP_MOR_GetP2mpPsbInfo(HELD, 0x1000b, op, &stateKey, record);
}

const std::string CRLSP_KEY_HEX = "00000001 00000002 00000003 0004 0005 06070809";
const std::string STATE_KEY_HEX =
    "00000001 00000002 00000003 04050607 0008 0009 0000000a 0000000b 000c 000d 000e 0f10"
    "00000011 00000012 00000013 00000014 00000015";
const std::string P2MP_CRLSP_KEY_HEX = "00000001 00000002 00000003 0004 0005 0006 0007"
                                       "00000008 00000009 0000000a 0000000b";
const std::string ZEROS_12 = std::string(24, '0');
const std::string ZEROS_16 = std::string(32, '0');

const Answer count = {NEEDS_COUNT, 4, "4"};
const Answer upLspCount = {NEEDS_ITEM, 4, "4"};
const Answer debugInfo = {EXACT, sizeof(RSVP_MOR_DebugInfo), "4 r2 2 4 4 r2 2 4 4"};
const Answer globalInfo = {TAKEN, sizeof(RSVP_MOR_GlobalInfo), "4 r68 4 2 r6 4 2 r2 4*147"};
const Answer ifInfo = {TAKEN, sizeof(RSVP_MOR_IfInfo), "4*57 r68 4 2 r2 2 r2 2*3 r2 4*3 2 r2 4*56"};
const Answer ifConfig = {NEEDS_ITEM, sizeof(RSVP_MOR_IfConfig), "", 8};
const Answer nbr = {TAKEN, sizeof(RSVP_MOR_ReplyNbr), "4*8 2 r6 4*2"};
const Answer authEntry = {EXACT, sizeof(RSVP_MOR_ReplyAuth), "r80 8*2 4*5 2 r10"};
const Answer facility = {NEEDS_ITEM, sizeof(RSVP_MOR_ReplyFrrFacility), "4*11"};
const Answer general = {NEEDS_ITEM, sizeof(RSVP_MOR_ReplyFrrGeneral), "4*11"};
const Answer extArHop = {NEEDS_ITEM, sizeof(RSVP_MOR_ReplyExtArHop), "4*2 r4"};
const Answer tunnel = {NEEDS_ITEM, sizeof(RSVP_MOR_ReplyTunnel), "4*13 2 r1 t 2 r2"};
const Answer cHop = {NEEDS_ITEM, sizeof(RSVP_MOR_ReplyCHop), "2 r18 4*4"};
const Answer arHop = {NEEDS_ITEM, sizeof(RSVP_MOR_ReplyArHop), "2 r18 4*2"};
const Answer resource = {NEEDS_ITEM, sizeof(RSVP_MOR_ReplyResource), "4*6"};
const Answer psb = {LISTS, sizeof(RSVP_MOR_ReplyPsb), "15 3x2 4 5 6x2 7x3", 0, Free<RSVP_MOR_FreeReplyPsb>};
const Answer rsb = {LISTS, sizeof(RSVP_MOR_ReplyRsb), "12 13=1 7x2 13=2 99 13=3 7x1", 0, Free<RSVP_MOR_FreeReplyRsb>};
const Answer phsb = {LISTS, sizeof(RSVP_MOR_ReplyPhsb), "14=1 13 13 99 14=2 13 11", 0, Free<RSVP_MOR_FreeReplyPhsb>};
const Answer crlsp = {LISTS, sizeof(RSVP_MOR_ReplyCrlsp), "1 7x3 99 17", 0, Free<RSVP_MOR_FreeReplyCrlsp>};
const Answer p2mpPsb = {LISTS, sizeof(RSVP_MOR_P2mpPsbInfo),   "35 4 36 5x2 37 6 99 38 7x2 39",
                        0,     Free<RSVP_MOR_FreeP2mpPsbInfo>, false};
const Answer p2mpRsb = {LISTS, sizeof(RSVP_MOR_P2mpRsbInfo),   "35 7x2 36 99 37",
                        0,     Free<RSVP_MOR_FreeP2mpRsbInfo>, false};
const Answer p2mpCrlsp = {LISTS, sizeof(RSVP_MOR_P2mpCrlspInfo), "31 32=1 33x2 32=2 34 32=3 33x1", 0,
                          Free<RSVP_MOR_FreeP2mpCrlspInfo>};

} // namespace

const std::vector<Operation> &Operations()
{
    static const std::vector<Operation> operations = {
        {CALL(RSVP_MOR_GetFrrIfNum), PLAIN, "03 03 0004 00000000 006d 0000", count},
        {CALL(RSVP_MOR_GetFrrActiveIfNum), PLAIN, "03 03 0004 00000000 006e 0000", count},
        {CALL(RSVP_MOR_GetActBypassTunnels), PLAIN, "03 03 0004 00000000 006f 0000", count},
        {CALL(RSVP_GetUpLspNumber), COUNTED, "03 03 0004 00000000 0064 0000", upLspCount},

        {CALL(RSVP_MOR_SetMplsRsvp, 1u), DISABLES, "00 01 0004 00000000 0014 0000"},
        {CALL(RSVP_SetGlobalCapability, 0u), DISABLES, "00 01 0004 00000000 0014 0000"},
        {CALL(RSVP_MOR_SetRsvpEnable, IF), GATED, "01 00 000c 00000000 0001 0004 03000102 0012 0000"},
        {"RSVP_SetIfCapability", SetIfCapability, GATED, "01 00 000c 00000000 0001 0004 03000102 0012 0000"},
        {CALL(RSVP_MOR_SetRsvpPeer, PEER), SENDS_OP, "02 00 000c 00000000 0000 0004 0a000009 000d 0000"},

        {CALL(RSVP_MOR_SetRefreshInterval, uint16_t{258}), PLAIN, "00 00 0008 00000000 000f 0004 01020000"},
        {CALL(RSVP_MOR_SetKeepMultiplier, uint8_t{0xa5}), PLAIN, "00 00 0008 00000000 000c 0004 a5000000"},
        {CALL(RSVP_MOR_SetHelloInterval, uint8_t{0xa5}), PLAIN, "00 08 0008 00000000 000a 0004 a5000000"},
        {CALL(RSVP_MOR_SetHelloLost, uint8_t{0xa5}), PLAIN, "00 08 0008 00000000 000b 0004 a5000000"},
        {CALL(RSVP_MOR_SetDscpValue, 1u), PLAIN, "00 00 0008 00000000 0013 0004 00000001"},
        {CALL(RSVP_MOR_SetGrEnable), SENDS_OP, "00 00 0004 00000000 0008 0000"},
        {CALL(RSVP_MOR_SetHelloEnable, IF), GATED, "01 00 000c 00000000 0001 0004 03000102 0009 0000"},
        {CALL(RSVP_MOR_SetBfdEnable, IF), GATED, "01 00 000c 00000000 0001 0004 03000102 0006 0000"},
        {"RSVP_MOR_SetReduction", SetReduction, GATED, "01 00 0010 00000000 0001 0004 03000102 000e 0004 01020304"},
        {CALL(RSVP_MOR_SetRetransInterval, IF, uint16_t{258}), GATED_ONLY,
         "01 00 0010 00000000 0001 0004 03000102 0010 0004 01020000"},
        {CALL(RSVP_MOR_SetRetransIncrement, IF, uint8_t{0xa5}), GATED_ONLY,
         "01 00 0010 00000000 0001 0004 03000102 0011 0004 a5000000"},

        {CALL(RSVP_MOR_SetAuthKey, KEY), SENDS_OP, "00 00 0048 00000000 0003 0044" + KEY_HEX},
        {CALL(RSVP_MOR_SetAuthChallenge), SENDS_OP, "00 00 0004 00000000 0002 0000"},
        {CALL(RSVP_MOR_SetAuthLifeTime, 258u), PLAIN, "00 00 0008 00000000 0004 0004 00000102"},
        {CALL(RSVP_MOR_SetAuthWindowSize, uint8_t{0xa5}), PLAIN, "00 00 0008 00000000 0005 0004 a5000000"},
        {CALL(RSVP_MOR_SetIntfAuthKey, IF, KEY), GATED, "01 00 0050 00000000 0001 0004 03000102 0003 0044" + KEY_HEX},
        {CALL(RSVP_MOR_SetIntfAuthChallenge, IF), GATED, "01 00 000c 00000000 0001 0004 03000102 0002 0000"},
        {CALL(RSVP_MOR_SetIntfAuthLifeTime, IF, 258u), GATED_ONLY,
         "01 00 0010 00000000 0001 0004 03000102 0004 0004 00000102"},
        {CALL(RSVP_MOR_SetIntfAuthWindowSize, IF, uint8_t{0xa5}), GATED_ONLY,
         "01 00 0010 00000000 0001 0004 03000102 0005 0004 a5000000"},
        {CALL(RSVP_MOR_SetPeerAuthKey, PEER, KEY), SENDS_OP,
         "02 00 0050 00000000 0000 0004 0a000009 0003 0044" + KEY_HEX},
        {CALL(RSVP_MOR_SetPeerAuthChallenge, PEER), SENDS_OP, "02 00 000c 00000000 0000 0004 0a000009 0002 0000"},
        {CALL(RSVP_MOR_SetPeerAuthLifeTime, PEER, 258u), PLAIN,
         "02 00 0010 00000000 0000 0004 0a000009 0004 0004 00000102"},
        {CALL(RSVP_MOR_SetPeerAuthWindowSize, PEER, uint8_t{0xa5}), PLAIN,
         "02 00 0010 00000000 0000 0004 0a000009 0005 0004 a5000000"},
        {CALL(RSVP_MOR_ResetAuth, &authEntryKey), REFUSED,
         "05 00 0010 00000000 0000 000c 00000001 00000002 0003 0004"},

        {CALL(RSVP_MOR_SetDebug, &debugA), GATED,
         "00 00 0014 00000000 0007 0010 0a000001 0000 0405 0a000006 00000010"},
        {CALL(RSVP_MOR_SetDebug, &debugB), GATED,
         "00 00 0014 00000000 0007 0010 0a000001 0000 0405 0a000006 00000040"},
        {CALL(RSVP_MOR_SetDebug, &debugPlain), GATED, "00 00 0014 00000000 0007 0010" + ZEROS_12 + "00000020"},
        {CALL(RSVP_MOR_SetDebug, &debugBothBits), GATED, "00 00 0014 00000000 0007 0010" + ZEROS_12 + "00000050"},
        {CALL(RSVP_MOR_GetRsvpDebug), ON_HELD, "03 03 0004 00000000 0002 0000", debugInfo},
        {CALL(RSVP_MOR_ResetStatistics, HELD, &statisticsKey), ON_HELD,
         "05 00 000c 00000000 0001 0008 00000001 0002 0000"},

        {CALL(RSVP_MOR_GetGlobalInfo), ON_HELD, "03 03 0004 00000000 0006 0000", globalInfo},
        {CALL(RSVP_MOR_GetIfInfo, IF), ON_HELD, "03 03 0008 00000000 0007 0004 03000102", ifInfo},
        {CALL(RSVP_MOR_GetFirstIfInfo), ON_HELD, "03 04 0004 00000000 0007 0000", ifInfo},
        {CALL(RSVP_MOR_GetNextIfInfo, IF), ON_HELD, "03 05 0008 00000000 0007 0004 03000102", ifInfo},
        {CALL(RSVP_GetIfConfig, IF), PLAIN, "03 03 0008 00000000 0070 0004 03000102", ifConfig},
        {CALL(RSVP_GetFirstIfConfig), PLAIN, "03 04 0008 00000000 0070 0004 00000000", ifConfig},
        {CALL(RSVP_GetNextIfConfig, IF), PLAIN, "03 05 0008 00000000 0070 0004 03000102", ifConfig},
        {CALL(RSVP_MOR_GetFirstNbr), ON_HELD, "03 04 0004 00000000 0003 0000", nbr},
        {CALL(RSVP_MOR_GetNextNbr, &nbrKey), ON_HELD, "03 05 000c 00000000 0003 0008 0a000001 00000002", nbr},
        {CALL(RSVP_MOR_GetFirstAuth), ON_HELD, "03 04 0004 00000000 0000 0000", authEntry},
        {CALL(RSVP_MOR_GetNextAuth, &authWalkKey), ON_HELD, "03 05 000c 00000000 0000 0008 0a000001 00000002",
         authEntry},
        {CALL(RSVP_MOR_GetFrrFacilityDBTbl, 3u, &facilityKey), PLAIN,
         "03 03 001c 00000000 006c 0018 04030201 00000002 00000003 00000004 11121314 05060708", facility},
        {CALL(RSVP_MOR_GetFrrFacilityDBTbl, 4u, nullptr), PLAIN, "03 04 0004 00000000 006c 0000", facility},
        {CALL(RSVP_MOR_GetFrrFacilityDBTbl, 5u, &facilityKey), PLAIN,
         "03 05 001c 00000000 006c 0018 04030201 00000002 00000003 00000004 11121314 05060708", facility},
        {CALL(RSVP_MOR_GetFrrGeneralTbl, &generalKey), PLAIN,
         "03 03 0010 00000000 006a 000c 04030201 00000002 00000003", general},
        {CALL(RSVP_MOR_GetFirstFrrGeneralTbl), PLAIN, "03 04 0010 00000000 006a 000c" + ZEROS_12, general},
        {CALL(RSVP_MOR_GetNextFrrGeneralTbl, &generalKey), PLAIN,
         "03 05 0010 00000000 006a 000c 04030201 00000002 00000003", general},
        {CALL(RSVP_MOR_GetExtArHop, 0x102u, 0x304u), PLAIN,
         "03 03 0010 00000000 006b 000c 00000102 00000304 00000000", extArHop},
        {CALL(RSVP_MOR_GetFirstExtArHop), PLAIN, "03 04 0010 00000000 006b 000c" + ZEROS_12, extArHop},
        {CALL(RSVP_MOR_GetNextExtArHop, 0x102u, 0x304u), PLAIN,
         "03 05 0010 00000000 006b 000c 00000102 00000304 00000000", extArHop},

        {CALL(RSVP_MOR_GetFirstPsbInfo), ON_HELD, "03 04 0004 00000000 0008 0000", psb},
        {CALL(RSVP_MOR_GetNextPsbInfo, &session, &sender), ON_HELD,
         "03 05 0018 00000000 0008 0014" + SESSION_HEX + SENDER_HEX, psb},
        {CALL(RSVP_MOR_GetFirstRsbInfo), ON_HELD, "03 04 0004 00000000 0005 0000", rsb},
        {CALL(RSVP_MOR_GetNextRsbInfo, &session, &hop, &sender), ON_HELD,
         "03 05 0020 00000000 0005 001c" + SESSION_HEX + HOP_HEX + SENDER_HEX, rsb},
        {CALL(RSVP_MOR_GetFirstPhsbInfo), ON_HELD, "03 04 0004 00000000 0004 0000", phsb},
        {CALL(RSVP_MOR_GetNextPhsbInfo, &session, &hop), ON_HELD,
         "03 05 0018 00000000 0004 0014" + SESSION_HEX + HOP_HEX, phsb},
        {CALL(RSVP_MOR_GetFirstCrlsp), ON_HELD, "03 04 0004 00000000 0001 0000", crlsp},
        {CALL(RSVP_MOR_GetNextCrlsp, &crlspKey), ON_HELD, "03 05 0018 00000000 0001 0014" + CRLSP_KEY_HEX, crlsp},
        {"RSVP_MOR_GetP2mpPsbInfo", GetP2mpPsbInfo, ON_HELD_OP, "03 00 003c 00000000 000b 0038" + STATE_KEY_HEX,
         p2mpPsb},
        {CALL(RSVP_MOR_GetP2mpRsbInfo, &stateKey), ON_HELD_OP, "03 00 003c 00000000 000a 0038" + STATE_KEY_HEX,
         p2mpRsb},
        {CALL(RSVP_MOR_GetP2mpCrlsp, &p2mpCrlspKey), ON_HELD_OP, "03 00 0028 00000000 0009 0024" + P2MP_CRLSP_KEY_HEX,
         p2mpCrlsp},

        {CALL(RSVP_GetTunnel, &tunnelKey), PLAIN, "03 03 0014 00000000 0065 0010 04030201 00000002 00000003 00000004",
         tunnel},
        {CALL(RSVP_GetFirstTunnel), PLAIN, "03 04 0014 00000000 0065 0010" + ZEROS_16, tunnel},
        {CALL(RSVP_GetNextTunnel, &tunnelKey), PLAIN,
         "03 05 0014 00000000 0065 0010 04030201 00000002 00000003 00000004", tunnel},
        {CALL(RSVP_GetFirstIngressTunnel), PLAIN, "03 06 0014 00000000 0065 0010" + ZEROS_16, tunnel},
        {CALL(RSVP_GetNextIngressTunnel, &tunnelKey), PLAIN,
         "03 07 0014 00000000 0065 0010 04030201 00000002 00000003 00000004", tunnel},
        {CALL(RSVP_GetCHop), PLAIN, "03 03 0010 00000000 0069 000c 11223305 11223306 00000000", cHop},
        {CALL(RSVP_GetFirstCHop), PLAIN, "03 04 0010 00000000 0069 000c" + ZEROS_12, cHop},
        {CALL(RSVP_GetNextCHop), PLAIN, "03 05 0010 00000000 0069 000c 11223305 11223306 00000000", cHop},
        {CALL(RSVP_GetArHop), PLAIN, "03 03 0010 00000000 0068 000c 11223305 11223306 00000000", arHop},
        {CALL(RSVP_GetFirstArHop), PLAIN, "03 04 0010 00000000 0068 000c" + ZEROS_12, arHop},
        {CALL(RSVP_GetNextArHop), PLAIN, "03 05 0010 00000000 0068 000c 11223305 11223306 00000000", arHop},
        {CALL(RSVP_GetResource), PLAIN, "03 03 0008 00000000 0067 0004 11223300", resource},
        {CALL(RSVP_GetFirstResource), PLAIN, "03 04 0004 00000000 0067 0000", resource},
        {CALL(RSVP_GetNextResource), PLAIN, "03 05 0008 00000000 0067 0004 11223300", resource},
    };
    return operations;
}
const std::set<std::string> &Silent()
{
    static const std::set<std::string> names = {"RSVP_MOR_LIPCOpen",           "RSVP_MOR_LIPCClose",
                                                "RSVP_IsGlobalEnabled",        "RSVP_Opt_Parse",
                                                "RSVP_MOR_FreeReplyPsb",       "RSVP_MOR_FreeReplyRsb",
                                                "rsvp_mor_FreeReplyFSInfo",    "RSVP_MOR_FreeReplyPhsb",
                                                "rsvp_mor_FreeReplyFDInfo",    "RSVP_MOR_FreeReplyCrlsp",
                                                "RSVP_MOR_FreeP2mpPsbInfo",    "RSVP_MOR_FreeP2mpRsbInfo",
                                                "RSVP_MOR_FreeP2mpCrlspInfo",  "rsvp_mor_FreeP2mpRro",
                                                "rsvp_mor_FreeP2mpReplySubLsp"};
    return names;
}

bool OwnSession(const Operation &operation)
{
    return operation.manner < ON_HELD;
}

Bytes GoodBody(const Operation &operation)
{
    const Answer &answer = operation.answer;
    if (answer.reader == DROPPED)
        return "";
    if (answer.reader == LISTS)
        return Body(answer.content);
    return Item(77, Pattern(answer.value == 0 ? answer.size : answer.value)); // the type is compared with nothing
}

namespace {

alignas(16) char area[4096];
constexpr size_t GUARD = 64; // bytes behind a record that no call may touch

} // namespace

Outcome Perform(const Operation &operation, const Bytes &reply, uint32_t op)
{
    const size_t size = operation.answer.size;
    memset(area, 0, sizeof area);
    for (uint32_t i = 0; operation.answer.reader != LISTS && i < (size + 3) / 4; ++i) {
        const uint32_t word = 0x11223300 + i;
        memcpy(area + 4 * i, &word, sizeof word);
    }
    memset(area + size, 0x5a, GUARD);
    const Bytes before(area, size);
    world.replies = {reply};
    const uint32_t status = operation.call(op, {area});
    EXPECT_EQ(Bytes(area + size, GUARD), Bytes(GUARD, '\x5a')) << "written behind the record";
    return {status, before, Bytes(area, size)};
}

void Release(const Operation &operation)
{
    if (operation.answer.release == nullptr)
        return;
    operation.answer.release({area});
    if (operation.answer.resets)
        operation.answer.release({area});
}

} // namespace scripted
