// The table of operations. Keys and other arguments are constants in read-only memory: a function that wrote to one
// would crash the test.
#include "tests/support/operations.h"

#include <cstring>

namespace scripted {

namespace {

// Calls a function with the arguments of a row, and with the held session, the record and `op` if it takes them.
template <auto Function, auto... Arguments>
uint32_t Call([[maybe_unused]] uint32_t op, [[maybe_unused]] Record record)
{
    using Type = decltype(Function);
    if constexpr (std::is_invocable_v<Type, int32_t, decltype(Arguments)..., Record>)
        return Function(kHeld, Arguments..., record);
    else if constexpr (std::is_invocable_v<Type, int32_t, uint32_t, decltype(Arguments)..., Record>)
        return Function(kHeld, op, Arguments..., record);
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

constexpr uint32_t kIf = 0x03000102;
constexpr uint32_t kPeer = 0x0a000009;

// The pair is the one argument that is written to. The tests of requests look at it.
uint32_t SetReduction(uint32_t op, Record)
{
    uint16_t pair[2] = {258, 772};
    return RSVP_MOR_SetReduction(op, kIf, pair);
}

uint32_t SetIfCapability(uint32_t op, Record)
{
    return RSVP_SetIfCapability(kIf, op == 1 ? 0 : 1);
}

constexpr uint8_t kKey[68] = {1, 0, 2, 0xff, 0}; // zero bytes do not end it
const std::string kKeyHex = "010002ff" + std::string(128, '0');

constexpr RSVP_MOR_Session kSession = {0x0a000001, {2, 3}, 0x0405, 0x0a000006};
constexpr RSVP_MOR_Hop kHop = {0x0a00000c, 0x0d0e0f10};
constexpr RSVP_MOR_Sender kSender = {0x0a000007, {8, 9}, 0x0a0b};
const std::string kSessionHex = "0a000001 0203 0405 0a000006";
const std::string kHopHex = "0a00000c 0d0e0f10";
const std::string kSenderHex = "0a000007 0809 0a0b";

constexpr RSVP_MOR_AuthEntryKey kAuthEntryKey = {1, 2, 3, 4};
constexpr RSVP_MOR_DebugSwitch kDebugA = {kSession, 16};
constexpr RSVP_MOR_DebugSwitch kDebugB = {kSession, 64};
constexpr RSVP_MOR_DebugSwitch kDebugPlain = {kSession, 32};
constexpr RSVP_MOR_DebugSwitch kDebugBothBits = {kSession, 80};
constexpr RSVP_MOR_StatisticsKey kStatisticsKey = {1, 2};
constexpr RSVP_MOR_NbrKey kNbrKey = {0x0a000001, 2};
constexpr RSVP_MOR_AuthWalkKey kAuthWalkKey = {0x0a000001, 2};
constexpr RSVP_MOR_FrrFacilityKey kFacilityKey = {0x04030201, 2, 3, 4, {0x11, 0x12, 0x13, 0x14}, {5, 6, 7, 8}};
constexpr RSVP_MOR_FrrGeneralKey kGeneralKey = {0x04030201, 2, 3};
constexpr RSVP_MOR_TunnelKey kTunnelKey = {0x04030201, 2, 3, 4};
constexpr RSVP_MOR_CrlspKey kCrlspKey = {1, 2, 3, 4, 5, {6, 7, 8, 9}};
constexpr RSVP_MOR_P2mpStateKey kStateKey = {1,  2,  3,        {4, 5, 6, 7}, 8,  9,  10, 11, 12,
                                             13, 14, {15, 16}, 17,           18, 19, 20, 21};
constexpr RSVP_MOR_P2mpCrlspKey kP2mpCrlspKey = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};

// Only the low half of the item type is sent.
uint32_t GetP2mpPsbInfo(uint32_t op, Record record)
{
    return RSVP_MOR_GetP2mpPsbInfo(kHeld, 0x1000b, op, &kStateKey, record);
}

const std::string kCrlspKeyHex = "00000001 00000002 00000003 0004 0005 06070809";
const std::string kStateKeyHex = "00000001 00000002 00000003 04050607 0008 0009 0000000a 0000000b 000c 000d 000e 0f10"
                                 "00000011 00000012 00000013 00000014 00000015";
const std::string kP2mpCrlspKeyHex = "00000001 00000002 00000003 0004 0005 0006 0007"
                                     "00000008 00000009 0000000a 0000000b";
const std::string kZeros12 = std::string(24, '0');
const std::string kZeros16 = std::string(32, '0');

const Answer kCount = {kNeedsCount, 4, "4"};
const Answer kUpLspCount = {kNeedsItem, 4, "4"};
const Answer kDebugInfo = {kExact, sizeof(RSVP_MOR_DebugInfo), "4 r2 2 4 4 r2 2 4 4"};
const Answer kGlobalInfo = {kTaken, sizeof(RSVP_MOR_GlobalInfo), "4 r68 4 2 r6 4 2 r2 4*147"};
const Answer kIfInfo = {kTaken, sizeof(RSVP_MOR_IfInfo), "4*57 r68 4 2 r2 2 r2 2*3 r2 4*3 2 r2 4*56"};
const Answer kIfConfig = {kNeedsItem, sizeof(RSVP_MOR_IfConfig), "", 8};
const Answer kNbr = {kTaken, sizeof(RSVP_MOR_ReplyNbr), "4*8 2 r6 4*2"};
const Answer kAuthEntry = {kExact, sizeof(RSVP_MOR_ReplyAuth), "r80 8*2 4*5 2 r10"};
const Answer kFacility = {kNeedsItem, sizeof(RSVP_MOR_ReplyFrrFacility), "4*11"};
const Answer kGeneral = {kNeedsItem, sizeof(RSVP_MOR_ReplyFrrGeneral), "4*11"};
const Answer kExtArHop = {kNeedsItem, sizeof(RSVP_MOR_ReplyExtArHop), "4*2 r4"};
const Answer kTunnel = {kNeedsItem, sizeof(RSVP_MOR_ReplyTunnel), "4*13 2 r1 t 2 r2"};
const Answer kCHop = {kNeedsItem, sizeof(RSVP_MOR_ReplyCHop), "2 r18 4*4"};
const Answer kArHop = {kNeedsItem, sizeof(RSVP_MOR_ReplyArHop), "2 r18 4*2"};
const Answer kResource = {kNeedsItem, sizeof(RSVP_MOR_ReplyResource), "4*6"};
const Answer kPsb = {kLists, sizeof(RSVP_MOR_ReplyPsb), "15 3x2 4 5 6x2 7x3", 0, Free<RSVP_MOR_FreeReplyPsb>};
const Answer kRsb = {kLists, sizeof(RSVP_MOR_ReplyRsb), "12 13=1 7x2 13=2 99 13=3 7x1", 0,
                     Free<RSVP_MOR_FreeReplyRsb>};
const Answer kPhsb = {kLists, sizeof(RSVP_MOR_ReplyPhsb), "14=1 13 13 99 14=2 13 11", 0,
                      Free<RSVP_MOR_FreeReplyPhsb>};
const Answer kCrlsp = {kLists, sizeof(RSVP_MOR_ReplyCrlsp), "1 7x3 99 17", 0, Free<RSVP_MOR_FreeReplyCrlsp>};
const Answer kP2mpPsb = {kLists, sizeof(RSVP_MOR_P2mpPsbInfo),   "35 4 36 5x2 37 6 99 38 7x2 39",
                         0,      Free<RSVP_MOR_FreeP2mpPsbInfo>, false};
const Answer kP2mpRsb = {kLists, sizeof(RSVP_MOR_P2mpRsbInfo),   "35 7x2 36 99 37",
                         0,      Free<RSVP_MOR_FreeP2mpRsbInfo>, false};
const Answer kP2mpCrlsp = {kLists, sizeof(RSVP_MOR_P2mpCrlspInfo), "31 32=1 33x2 32=2 34 32=3 33x1", 0,
                           Free<RSVP_MOR_FreeP2mpCrlspInfo>};

} // namespace

const std::vector<Operation> &Operations()
{
    static const std::vector<Operation> operations = {
        {CALL(RSVP_MOR_GetFrrIfNum), kPlain, "03 03 0004 00000000 006d 0000", kCount},
        {CALL(RSVP_MOR_GetFrrActiveIfNum), kPlain, "03 03 0004 00000000 006e 0000", kCount},
        {CALL(RSVP_MOR_GetActBypassTunnels), kPlain, "03 03 0004 00000000 006f 0000", kCount},
        {CALL(RSVP_GetUpLspNumber), kCounted, "03 03 0004 00000000 0064 0000", kUpLspCount},

        {CALL(RSVP_MOR_SetMplsRsvp, 1u), kDisables, "00 01 0004 00000000 0014 0000"},
        {CALL(RSVP_SetGlobalCapability, 0u), kDisables, "00 01 0004 00000000 0014 0000"},
        {CALL(RSVP_MOR_SetRsvpEnable, kIf), kGated, "01 00 000c 00000000 0001 0004 03000102 0012 0000"},
        {"RSVP_SetIfCapability", SetIfCapability, kGated, "01 00 000c 00000000 0001 0004 03000102 0012 0000"},
        {CALL(RSVP_MOR_SetRsvpPeer, kPeer), kSendsOp, "02 00 000c 00000000 0000 0004 0a000009 000d 0000"},

        {CALL(RSVP_MOR_SetRefreshInterval, uint16_t{258}), kPlain, "00 00 0008 00000000 000f 0004 01020000"},
        {CALL(RSVP_MOR_SetKeepMultiplier, uint8_t{0xa5}), kPlain, "00 00 0008 00000000 000c 0004 a5000000"},
        {CALL(RSVP_MOR_SetHelloInterval, uint8_t{0xa5}), kPlain, "00 08 0008 00000000 000a 0004 a5000000"},
        {CALL(RSVP_MOR_SetHelloLost, uint8_t{0xa5}), kPlain, "00 08 0008 00000000 000b 0004 a5000000"},
        {CALL(RSVP_MOR_SetDscpValue, 1u), kPlain, "00 00 0008 00000000 0013 0004 00000001"},
        {CALL(RSVP_MOR_SetGrEnable), kSendsOp, "00 00 0004 00000000 0008 0000"},
        {CALL(RSVP_MOR_SetHelloEnable, kIf), kGated, "01 00 000c 00000000 0001 0004 03000102 0009 0000"},
        {CALL(RSVP_MOR_SetBfdEnable, kIf), kGated, "01 00 000c 00000000 0001 0004 03000102 0006 0000"},
        {"RSVP_MOR_SetReduction", SetReduction, kGated, "01 00 0010 00000000 0001 0004 03000102 000e 0004 01020304"},
        {CALL(RSVP_MOR_SetRetransInterval, kIf, uint16_t{258}), kGatedOnly,
         "01 00 0010 00000000 0001 0004 03000102 0010 0004 01020000"},
        {CALL(RSVP_MOR_SetRetransIncrement, kIf, uint8_t{0xa5}), kGatedOnly,
         "01 00 0010 00000000 0001 0004 03000102 0011 0004 a5000000"},

        {CALL(RSVP_MOR_SetAuthKey, kKey), kSendsOp, "00 00 0048 00000000 0003 0044" + kKeyHex},
        {CALL(RSVP_MOR_SetAuthChallenge), kSendsOp, "00 00 0004 00000000 0002 0000"},
        {CALL(RSVP_MOR_SetAuthLifeTime, 258u), kPlain, "00 00 0008 00000000 0004 0004 00000102"},
        {CALL(RSVP_MOR_SetAuthWindowSize, uint8_t{0xa5}), kPlain, "00 00 0008 00000000 0005 0004 a5000000"},
        {CALL(RSVP_MOR_SetIntfAuthKey, kIf, kKey), kGated,
         "01 00 0050 00000000 0001 0004 03000102 0003 0044" + kKeyHex},
        {CALL(RSVP_MOR_SetIntfAuthChallenge, kIf), kGated, "01 00 000c 00000000 0001 0004 03000102 0002 0000"},
        {CALL(RSVP_MOR_SetIntfAuthLifeTime, kIf, 258u), kGatedOnly,
         "01 00 0010 00000000 0001 0004 03000102 0004 0004 00000102"},
        {CALL(RSVP_MOR_SetIntfAuthWindowSize, kIf, uint8_t{0xa5}), kGatedOnly,
         "01 00 0010 00000000 0001 0004 03000102 0005 0004 a5000000"},
        {CALL(RSVP_MOR_SetPeerAuthKey, kPeer, kKey), kSendsOp,
         "02 00 0050 00000000 0000 0004 0a000009 0003 0044" + kKeyHex},
        {CALL(RSVP_MOR_SetPeerAuthChallenge, kPeer), kSendsOp, "02 00 000c 00000000 0000 0004 0a000009 0002 0000"},
        {CALL(RSVP_MOR_SetPeerAuthLifeTime, kPeer, 258u), kPlain,
         "02 00 0010 00000000 0000 0004 0a000009 0004 0004 00000102"},
        {CALL(RSVP_MOR_SetPeerAuthWindowSize, kPeer, uint8_t{0xa5}), kPlain,
         "02 00 0010 00000000 0000 0004 0a000009 0005 0004 a5000000"},
        {CALL(RSVP_MOR_ResetAuth, &kAuthEntryKey), kRefused,
         "05 00 0010 00000000 0000 000c 00000001 00000002 0003 0004"},

        {CALL(RSVP_MOR_SetDebug, &kDebugA), kGated,
         "00 00 0014 00000000 0007 0010 0a000001 0000 0405 0a000006 00000010"},
        {CALL(RSVP_MOR_SetDebug, &kDebugB), kGated,
         "00 00 0014 00000000 0007 0010 0a000001 0000 0405 0a000006 00000040"},
        {CALL(RSVP_MOR_SetDebug, &kDebugPlain), kGated, "00 00 0014 00000000 0007 0010" + kZeros12 + "00000020"},
        {CALL(RSVP_MOR_SetDebug, &kDebugBothBits), kGated, "00 00 0014 00000000 0007 0010" + kZeros12 + "00000050"},
        {CALL(RSVP_MOR_GetRsvpDebug), kOnHeld, "03 03 0004 00000000 0002 0000", kDebugInfo},
        {CALL(RSVP_MOR_ResetStatistics, kHeld, &kStatisticsKey), kOnHeld,
         "05 00 000c 00000000 0001 0008 00000001 0002 0000"},

        {CALL(RSVP_MOR_GetGlobalInfo), kOnHeld, "03 03 0004 00000000 0006 0000", kGlobalInfo},
        {CALL(RSVP_MOR_GetIfInfo, kIf), kOnHeld, "03 03 0008 00000000 0007 0004 03000102", kIfInfo},
        {CALL(RSVP_MOR_GetFirstIfInfo), kOnHeld, "03 04 0004 00000000 0007 0000", kIfInfo},
        {CALL(RSVP_MOR_GetNextIfInfo, kIf), kOnHeld, "03 05 0008 00000000 0007 0004 03000102", kIfInfo},
        {CALL(RSVP_GetIfConfig, kIf), kPlain, "03 03 0008 00000000 0070 0004 03000102", kIfConfig},
        {CALL(RSVP_GetFirstIfConfig), kPlain, "03 04 0008 00000000 0070 0004 00000000", kIfConfig},
        {CALL(RSVP_GetNextIfConfig, kIf), kPlain, "03 05 0008 00000000 0070 0004 03000102", kIfConfig},
        {CALL(RSVP_MOR_GetFirstNbr), kOnHeld, "03 04 0004 00000000 0003 0000", kNbr},
        {CALL(RSVP_MOR_GetNextNbr, &kNbrKey), kOnHeld, "03 05 000c 00000000 0003 0008 0a000001 00000002", kNbr},
        {CALL(RSVP_MOR_GetFirstAuth), kOnHeld, "03 04 0004 00000000 0000 0000", kAuthEntry},
        {CALL(RSVP_MOR_GetNextAuth, &kAuthWalkKey), kOnHeld, "03 05 000c 00000000 0000 0008 0a000001 00000002",
         kAuthEntry},
        {CALL(RSVP_MOR_GetFrrFacilityDBTbl, 3u, &kFacilityKey), kPlain,
         "03 03 001c 00000000 006c 0018 04030201 00000002 00000003 00000004 11121314 05060708", kFacility},
        {CALL(RSVP_MOR_GetFrrFacilityDBTbl, 4u, nullptr), kPlain, "03 04 0004 00000000 006c 0000", kFacility},
        {CALL(RSVP_MOR_GetFrrFacilityDBTbl, 5u, &kFacilityKey), kPlain,
         "03 05 001c 00000000 006c 0018 04030201 00000002 00000003 00000004 11121314 05060708", kFacility},
        {CALL(RSVP_MOR_GetFrrGeneralTbl, &kGeneralKey), kPlain,
         "03 03 0010 00000000 006a 000c 04030201 00000002 00000003", kGeneral},
        {CALL(RSVP_MOR_GetFirstFrrGeneralTbl), kPlain, "03 04 0010 00000000 006a 000c" + kZeros12, kGeneral},
        {CALL(RSVP_MOR_GetNextFrrGeneralTbl, &kGeneralKey), kPlain,
         "03 05 0010 00000000 006a 000c 04030201 00000002 00000003", kGeneral},
        {CALL(RSVP_MOR_GetExtArHop, 0x102u, 0x304u), kPlain,
         "03 03 0010 00000000 006b 000c 00000102 00000304 00000000", kExtArHop},
        {CALL(RSVP_MOR_GetFirstExtArHop), kPlain, "03 04 0010 00000000 006b 000c" + kZeros12, kExtArHop},
        {CALL(RSVP_MOR_GetNextExtArHop, 0x102u, 0x304u), kPlain,
         "03 05 0010 00000000 006b 000c 00000102 00000304 00000000", kExtArHop},

        {CALL(RSVP_MOR_GetFirstPsbInfo), kOnHeld, "03 04 0004 00000000 0008 0000", kPsb},
        {CALL(RSVP_MOR_GetNextPsbInfo, &kSession, &kSender), kOnHeld,
         "03 05 0018 00000000 0008 0014" + kSessionHex + kSenderHex, kPsb},
        {CALL(RSVP_MOR_GetFirstRsbInfo), kOnHeld, "03 04 0004 00000000 0005 0000", kRsb},
        {CALL(RSVP_MOR_GetNextRsbInfo, &kSession, &kHop, &kSender), kOnHeld,
         "03 05 0020 00000000 0005 001c" + kSessionHex + kHopHex + kSenderHex, kRsb},
        {CALL(RSVP_MOR_GetFirstPhsbInfo), kOnHeld, "03 04 0004 00000000 0004 0000", kPhsb},
        {CALL(RSVP_MOR_GetNextPhsbInfo, &kSession, &kHop), kOnHeld,
         "03 05 0018 00000000 0004 0014" + kSessionHex + kHopHex, kPhsb},
        {CALL(RSVP_MOR_GetFirstCrlsp), kOnHeld, "03 04 0004 00000000 0001 0000", kCrlsp},
        {CALL(RSVP_MOR_GetNextCrlsp, &kCrlspKey), kOnHeld, "03 05 0018 00000000 0001 0014" + kCrlspKeyHex, kCrlsp},
        {"RSVP_MOR_GetP2mpPsbInfo", GetP2mpPsbInfo, kOnHeldOp, "03 00 003c 00000000 000b 0038" + kStateKeyHex,
         kP2mpPsb},
        {CALL(RSVP_MOR_GetP2mpRsbInfo, &kStateKey), kOnHeldOp, "03 00 003c 00000000 000a 0038" + kStateKeyHex,
         kP2mpRsb},
        {CALL(RSVP_MOR_GetP2mpCrlsp, &kP2mpCrlspKey), kOnHeldOp, "03 00 0028 00000000 0009 0024" + kP2mpCrlspKeyHex,
         kP2mpCrlsp},

        {CALL(RSVP_GetTunnel, &kTunnelKey), kPlain,
         "03 03 0014 00000000 0065 0010 04030201 00000002 00000003 00000004", kTunnel},
        {CALL(RSVP_GetFirstTunnel), kPlain, "03 04 0014 00000000 0065 0010" + kZeros16, kTunnel},
        {CALL(RSVP_GetNextTunnel, &kTunnelKey), kPlain,
         "03 05 0014 00000000 0065 0010 04030201 00000002 00000003 00000004", kTunnel},
        {CALL(RSVP_GetFirstIngressTunnel), kPlain, "03 06 0014 00000000 0065 0010" + kZeros16, kTunnel},
        {CALL(RSVP_GetNextIngressTunnel, &kTunnelKey), kPlain,
         "03 07 0014 00000000 0065 0010 04030201 00000002 00000003 00000004", kTunnel},
        {CALL(RSVP_GetCHop), kPlain, "03 03 0010 00000000 0069 000c 11223305 11223306 00000000", kCHop},
        {CALL(RSVP_GetFirstCHop), kPlain, "03 04 0010 00000000 0069 000c" + kZeros12, kCHop},
        {CALL(RSVP_GetNextCHop), kPlain, "03 05 0010 00000000 0069 000c 11223305 11223306 00000000", kCHop},
        {CALL(RSVP_GetArHop), kPlain, "03 03 0010 00000000 0068 000c 11223305 11223306 00000000", kArHop},
        {CALL(RSVP_GetFirstArHop), kPlain, "03 04 0010 00000000 0068 000c" + kZeros12, kArHop},
        {CALL(RSVP_GetNextArHop), kPlain, "03 05 0010 00000000 0068 000c 11223305 11223306 00000000", kArHop},
        {CALL(RSVP_GetResource), kPlain, "03 03 0008 00000000 0067 0004 11223300", kResource},
        {CALL(RSVP_GetFirstResource), kPlain, "03 04 0004 00000000 0067 0000", kResource},
        {CALL(RSVP_GetNextResource), kPlain, "03 05 0008 00000000 0067 0004 11223300", kResource},
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
    return operation.manner < kOnHeld;
}

Bytes GoodBody(const Operation &operation)
{
    const Answer &answer = operation.answer;
    if (answer.reader == kDropped)
        return "";
    if (answer.reader == kLists)
        return Body(answer.content);
    return Item(77, Pattern(answer.value == 0 ? answer.size : answer.value)); // its type is never checked
}

namespace {

alignas(16) char area[4096];
constexpr size_t kGuard = 64; // bytes after a record that no call may touch

} // namespace

Outcome Perform(const Operation &operation, const Bytes &reply, uint32_t op)
{
    const size_t size = operation.answer.size;
    memset(area, 0, sizeof(area));
    for (uint32_t i = 0; operation.answer.reader != kLists && i < (size + 3) / 4; ++i) {
        const uint32_t word = 0x11223300 + i;
        memcpy(area + 4 * i, &word, sizeof(word));
    }
    memset(area + size, 0x5a, kGuard);
    const Bytes before(area, size);
    world.replies = {reply};
    const uint32_t status = operation.call(op, {area});
    EXPECT_EQ(Bytes(area + size, kGuard), Bytes(kGuard, '\x5a')) << "written beyond the record";
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
