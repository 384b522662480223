// The modules: RFC 3812 (MPLS-TE-STD-MIB), RFC 2206 (RSVP-MIB), RFC 6445 (MPLS-FRR-GENERAL-STD-MIB and
// MPLS-FRR-FACILITY-STD-MIB), and the agent's own RSVP-MOR-MIB.txt.
#include "tools/agentx/mib.h"

#include <algorithm>

namespace agentx {
namespace {

constexpr Word kRoles[] = {{1, "head"}, {2, "transit"}, {3, "tail"}, {4, "headTail"}};
constexpr Word kAdminStates[] = {{1, "up"}, {2, "down"}, {3, "testing"}};
constexpr Word kOperStates[] = {{1, "up"},      {2, "down"},       {3, "testing"},       {4, "unknown"},
                                {5, "dormant"}, {6, "notPresent"}, {7, "lowerLayerDown"}};
constexpr Word kSessionAttributes[] = {
    {0, "fastReroute"}, {1, "mergingPermitted"}, {2, "isPersistent"}, {3, "isPinned"}, {4, "recordRoute"}};
constexpr Word kOwners[] = {{1, "unknown"}, {2, "other"},  {3, "snmp"},       {4, "ldp"},
                            {5, "crldp"},   {6, "rsvpTe"}, {7, "policyAgent"}};
constexpr Word kSignalling[] = {{1, "none"}, {2, "rsvp"}, {3, "crldp"}, {4, "other"}};
constexpr Word kRowStates[] = {{1, "active"}, {2, "notInService"}, {3, "notReady"}};
constexpr Word kStorageTypes[] = {
    {1, "other"}, {2, "volatile"}, {3, "nonVolatile"}, {4, "permanent"}, {5, "readOnly"}};
constexpr Word kFrequencies[] = {{1, "unspecified"}, {2, "frequent"}, {3, "veryFrequent"}};
constexpr Word kHopAddressTypes[] = {{0, "unknown"},  {1, "ipv4"},  {2, "ipv6"},
                                     {3, "asnumber"}, {4, "unnum"}, {5, "lspid"}};
constexpr Word kHopTypes[] = {{1, "strict"}, {2, "loose"}};
constexpr Word kProtectionTypes[] = {{1, "linkProtection"}, {2, "nodeProtection"}};
constexpr Word kHopSessionFlags[] = {
    {0, "unsupported"},    {1, "localProtectionDesired"},     {2, "labelRecordingDesired"},
    {3, "sestyleDesired"}, {4, "bandwidthProtectionDesired"}, {5, "nodeProtectionDesired"}};
constexpr Word kHopRouteFlags[] = {{0, "unsupported"},
                                   {1, "localProtectionAvailable"},
                                   {2, "localProtectionInUse"},
                                   {3, "bandwidthProtection"},
                                   {4, "nodeProtection"}};
constexpr Word kProtectingStates[] = {{1, "active"}, {2, "ready"}, {3, "partial"}};
constexpr Word kServices[] = {{1, "bestEffort"}, {2, "guaranteedDelay"}, {5, "controlledLoad"}};
constexpr Word kEncapsulations[] = {{1, "ip"}, {2, "udp"}, {3, "both"}};

constexpr uint32_t kActive = 1;
constexpr uint32_t kVolatile = 2;
constexpr uint32_t kRsvp = 2;
constexpr uint32_t kRsvpTe = 6;

// ---- MPLS-TE-STD-MIB --------------------------------------------------------------------------------------------

constexpr uint32_t kTunnelScalarsEntry[] = {1, 3, 6, 1, 2, 1, 10, 166, 3, 1};
constexpr Object kTunnelScalarObjects[] = {
    {1, "mplsTunnelConfigured", Syntax::Unsigned},
    {2, "mplsTunnelActive", Syntax::Unsigned},
};

constexpr uint32_t kTunnelEntry[] = {1, 3, 6, 1, 2, 1, 10, 166, 3, 2, 2, 1};
constexpr Object kTunnelIndex[] = {
    {1, "mplsTunnelIndex", Syntax::Unsigned, 65535},
    {2, "mplsTunnelInstance", Syntax::Unsigned, 65535},
    {3, "mplsTunnelIngressLSRId", Syntax::Identifier},
    {4, "mplsTunnelEgressLSRId", Syntax::Identifier},
};
constexpr Object kTunnelObjects[] = {
    {5, "mplsTunnelName", Syntax::Text},
    {6, "mplsTunnelDescr", Syntax::Text},
    {7, "mplsTunnelIsIf", Syntax::Truth},
    {8, "mplsTunnelIfIndex", Syntax::Integer, kMostInteger},
    {9, "mplsTunnelOwner", Syntax::Enumeration, UINT32_MAX, kOwners, kRsvpTe},
    {10, "mplsTunnelRole", Syntax::Enumeration, UINT32_MAX, kRoles},
    {12, "mplsTunnelSignallingProto", Syntax::Enumeration, UINT32_MAX, kSignalling, kRsvp},
    {13, "mplsTunnelSetupPrio", Syntax::Integer, 7},
    {14, "mplsTunnelHoldingPrio", Syntax::Integer, 7},
    {15, "mplsTunnelSessionAttributes", Syntax::Bits, UINT32_MAX, kSessionAttributes},
    {16, "mplsTunnelLocalProtectInUse", Syntax::Truth},
    {17, "mplsTunnelResourcePointer", Syntax::ResourceRow},
    {18, "mplsTunnelPrimaryInstance", Syntax::Unsigned, 65535},
    {19, "mplsTunnelInstancePriority", Syntax::Unsigned},
    {20, "mplsTunnelHopTableIndex", Syntax::Unsigned},
    {21, "mplsTunnelPathInUse", Syntax::Unsigned},
    {22, "mplsTunnelARHopTableIndex", Syntax::Unsigned},
    {23, "mplsTunnelCHopTableIndex", Syntax::Unsigned},
    {24, "mplsTunnelIncludeAnyAffinity", Syntax::Unsigned},
    {25, "mplsTunnelIncludeAllAffinity", Syntax::Unsigned},
    {26, "mplsTunnelExcludeAnyAffinity", Syntax::Unsigned},
    {27, "mplsTunnelTotalUpTime", Syntax::Ticks},
    {28, "mplsTunnelInstanceUpTime", Syntax::Ticks},
    {29, "mplsTunnelPrimaryUpTime", Syntax::Ticks},
    {30, "mplsTunnelPathChanges", Syntax::Counter},
    {31, "mplsTunnelLastPathChange", Syntax::Ticks},
    {32, "mplsTunnelCreationTime", Syntax::Ticks},
    {33, "mplsTunnelStateTransitions", Syntax::Counter},
    {34, "mplsTunnelAdminStatus", Syntax::Enumeration, UINT32_MAX, kAdminStates},
    {35, "mplsTunnelOperStatus", Syntax::Enumeration, UINT32_MAX, kOperStates},
    {36, "mplsTunnelRowStatus", Syntax::Enumeration, UINT32_MAX, kRowStates, kActive},
    {37, "mplsTunnelStorageType", Syntax::Enumeration, UINT32_MAX, kStorageTypes, kVolatile},
};

constexpr uint32_t kResourceEntry[] = {1, 3, 6, 1, 2, 1, 10, 166, 3, 2, 6, 1};
constexpr Object kResourceIndex[] = {{1, "mplsTunnelResourceIndex", Syntax::Unsigned, kMostInteger}};
constexpr Object kResourceObjects[] = {
    {2, "mplsTunnelResourceMaxRate", Syntax::KilobitRate},
    {3, "mplsTunnelResourceMeanRate", Syntax::KilobitRate},
    {4, "mplsTunnelResourceMaxBurstSize", Syntax::Burst},
    {5, "mplsTunnelResourceMeanBurstSize", Syntax::Burst},
    {6, "mplsTunnelResourceExBurstSize", Syntax::Burst},
    {7, "mplsTunnelResourceFrequency", Syntax::Enumeration, UINT32_MAX, kFrequencies},
    {8, "mplsTunnelResourceWeight", Syntax::Unsigned, 255},
    {9, "mplsTunnelResourceRowStatus", Syntax::Enumeration, UINT32_MAX, kRowStates, kActive},
    {10, "mplsTunnelResourceStorageType", Syntax::Enumeration, UINT32_MAX, kStorageTypes, kVolatile},
};

constexpr uint32_t kActualHopEntry[] = {1, 3, 6, 1, 2, 1, 10, 166, 3, 2, 7, 1};
constexpr Object kActualHopIndex[] = {
    {1, "mplsTunnelARHopListIndex", Syntax::Unsigned},
    {2, "mplsTunnelARHopIndex", Syntax::Unsigned},
};
constexpr Object kActualHopObjects[] = {
    {3, "mplsTunnelARHopAddrType", Syntax::Enumeration, UINT32_MAX, kHopAddressTypes},
    {4, "mplsTunnelARHopIpAddr", Syntax::Address},
};

constexpr uint32_t kComputedHopEntry[] = {1, 3, 6, 1, 2, 1, 10, 166, 3, 2, 8, 1};
constexpr Object kComputedHopIndex[] = {
    {1, "mplsTunnelCHopListIndex", Syntax::Unsigned},
    {2, "mplsTunnelCHopIndex", Syntax::Unsigned},
};
constexpr Object kComputedHopObjects[] = {
    {3, "mplsTunnelCHopAddrType", Syntax::Enumeration, UINT32_MAX, kHopAddressTypes},
    {4, "mplsTunnelCHopIpAddr", Syntax::Address},
    {5, "mplsTunnelCHopIpPrefixLen", Syntax::Unsigned, 2040},
    {9, "mplsTunnelCHopType", Syntax::Enumeration, UINT32_MAX, kHopTypes},
};

// ---- MPLS-FRR-GENERAL-STD-MIB -----------------------------------------------------------------------------------

constexpr uint32_t kFrrConstraintsEntry[] = {1, 3, 6, 1, 2, 1, 202, 1, 3, 1};
constexpr Object kFrrConstraintsIndex[] = {
    {1, "mplsFrrGeneralConstraintsIfIndexOrZero", Syntax::Integer, kMostInteger},
    {2, "mplsFrrGeneralConstraintsTunnelIndex", Syntax::Unsigned, 65535},
    {3, "mplsFrrGeneralConstraintsTunnelInstance", Syntax::Unsigned, 65535},
};
constexpr Object kFrrConstraintsObjects[] = {
    {4, "mplsFrrGeneralConstraintsProtectionType", Syntax::Enumeration, UINT32_MAX, kProtectionTypes},
    {5, "mplsFrrGeneralConstraintsSetupPrio", Syntax::Unsigned, 7},
    {6, "mplsFrrGeneralConstraintsHoldingPrio", Syntax::Unsigned, 7},
    {7, "mplsFrrGeneralConstraintsInclAnyAffinity", Syntax::Unsigned},
    {8, "mplsFrrGeneralConstraintsInclAllAffinity", Syntax::Unsigned},
    {9, "mplsFrrGeneralConstraintsExclAnyAffinity", Syntax::Unsigned},
    {10, "mplsFrrGeneralConstraintsHopLimit", Syntax::Unsigned, 255},
    {11, "mplsFrrGeneralConstraintsBandwidth", Syntax::KilobitRate},
    {12, "mplsFrrGeneralConstraintsStorageType", Syntax::Enumeration, UINT32_MAX, kStorageTypes, kVolatile},
    {13, "mplsFrrGeneralConstraintsRowStatus", Syntax::Enumeration, UINT32_MAX, kRowStates, kActive},
};

constexpr uint32_t kFrrHopEntry[] = {1, 3, 6, 1, 2, 1, 202, 1, 4, 1};
constexpr Object kFrrHopObjects[] = {
    {1, "mplsFrrGeneralTunnelARHopSessionAttributeFlags", Syntax::Bits, UINT32_MAX, kHopSessionFlags},
    {2, "mplsFrrGeneralTunnelARHopRROSubObjectFlags", Syntax::Bits, UINT32_MAX, kHopRouteFlags},
};

// ---- MPLS-FRR-FACILITY-STD-MIB ----------------------------------------------------------------------------------

constexpr uint32_t kFrrScalarsEntry[] = {1, 3, 6, 1, 2, 1, 204, 1};
constexpr Object kFrrScalarObjects[] = {
    {1, "mplsFrrConfiguredInterfaces", Syntax::Integer, kMostInteger},
    {2, "mplsFrrActiveInterfaces", Syntax::Gauge},
    {4, "mplsFrrActiveBypassTunnels", Syntax::Gauge},
};

constexpr uint32_t kFrrFacilityEntry[] = {1, 3, 6, 1, 2, 1, 204, 1, 7, 1};
constexpr Object kFrrFacilityIndex[] = {
    {1, "mplsFrrFacilityProtectedIfIndex", Syntax::Integer, kMostInteger},
    {2, "mplsFrrFacilityProtectingTunnelIndex", Syntax::Unsigned, 65535},
    {3, "mplsFrrFacilityBackupTunnelIndex", Syntax::Unsigned, 65535},
    {4, "mplsFrrFacilityBackupTunnelInstance", Syntax::Unsigned, 65535},
    {5, "mplsFrrFacilityBackupTunnelIngressLSRId", Syntax::LsrId},
    {6, "mplsFrrFacilityBackupTunnelEgressLSRId", Syntax::LsrId},
};
constexpr Object kFrrFacilityObjects[] = {
    {7, "mplsFrrFacilityDBNumProtectingTunnelOnIf", Syntax::Gauge},
    {8, "mplsFrrFacilityDBNumProtectedLspOnIf", Syntax::Gauge},
    {9, "mplsFrrFacilityDBNumProtectedTunnels", Syntax::Gauge},
    {10, "mplsFrrFacilityDBProtectingTunnelStatus", Syntax::Enumeration, UINT32_MAX, kProtectingStates},
    {11, "mplsFrrFacilityDBProtectingTunnelResvBw", Syntax::KilobitRate},
};

// ---- RSVP-MIB ---------------------------------------------------------------------------------------------------

constexpr uint32_t kSessionEntry[] = {1, 3, 6, 1, 2, 1, 51, 1, 1, 1};
constexpr Object kSessionObjects[] = {
    {2, "rsvpSessionType", Syntax::Integer, 255},
    {3, "rsvpSessionDestAddr", Syntax::Address},
    {4, "rsvpSessionDestAddrLength", Syntax::Integer, 128},
    {6, "rsvpSessionPort", Syntax::Port},
    {7, "rsvpSessionSenders", Syntax::Gauge},
    {8, "rsvpSessionReceivers", Syntax::Gauge},
    {9, "rsvpSessionRequests", Syntax::Gauge},
};

constexpr uint32_t kSenderEntry[] = {1, 3, 6, 1, 2, 1, 51, 1, 2, 1};
constexpr Object kSenderObjects[] = {
    {2, "rsvpSenderType", Syntax::Integer, 255},
    {3, "rsvpSenderDestAddr", Syntax::Address},
    {4, "rsvpSenderAddr", Syntax::Address},
    {5, "rsvpSenderDestAddrLength", Syntax::Integer, 128},
    {6, "rsvpSenderAddrLength", Syntax::Integer, 128},
    {8, "rsvpSenderDestPort", Syntax::Port},
    {9, "rsvpSenderPort", Syntax::Port},
    {11, "rsvpSenderHopAddr", Syntax::Address},
    {12, "rsvpSenderHopLih", Syntax::Integer},
    {13, "rsvpSenderInterface", Syntax::Integer, kMostInteger},
    {14, "rsvpSenderTSpecRate", Syntax::BitRate},
    {15, "rsvpSenderTSpecPeakRate", Syntax::BitRate},
    {16, "rsvpSenderTSpecBurst", Syntax::Octets},
    {17, "rsvpSenderTSpecMinTU", Syntax::Octets},
    {18, "rsvpSenderTSpecMaxTU", Syntax::Octets},
    {19, "rsvpSenderInterval", Syntax::Milliseconds},
    {23, "rsvpSenderAdspecBreak", Syntax::Truth},
    {24, "rsvpSenderAdspecHopCount", Syntax::Integer, 65535},
    {25, "rsvpSenderAdspecPathBw", Syntax::BitRate},
    {26, "rsvpSenderAdspecMinLatency", Syntax::Integer, kMostInteger},
    {27, "rsvpSenderAdspecMtu", Syntax::Integer, 65535},
    {28, "rsvpSenderAdspecGuaranteedSvc", Syntax::Truth},
    {29, "rsvpSenderAdspecGuaranteedBreak", Syntax::Truth},
    {30, "rsvpSenderAdspecGuaranteedCtot", Syntax::Octets},
    {31, "rsvpSenderAdspecGuaranteedDtot", Syntax::Octets},
    {32, "rsvpSenderAdspecGuaranteedCsum", Syntax::Octets},
    {33, "rsvpSenderAdspecGuaranteedDsum", Syntax::Octets},
    {34, "rsvpSenderAdspecGuaranteedHopCount", Syntax::Integer, 65535},
    {35, "rsvpSenderAdspecGuaranteedPathBw", Syntax::BitRate},
    {36, "rsvpSenderAdspecGuaranteedMinLatency", Syntax::Integer, kMostInteger},
    {37, "rsvpSenderAdspecGuaranteedMtu", Syntax::Integer, 65535},
    {38, "rsvpSenderAdspecCtrlLoadSvc", Syntax::Truth},
    {39, "rsvpSenderAdspecCtrlLoadBreak", Syntax::Truth},
    {40, "rsvpSenderAdspecCtrlLoadHopCount", Syntax::Integer, 65535},
    {41, "rsvpSenderAdspecCtrlLoadPathBw", Syntax::BitRate},
    {42, "rsvpSenderAdspecCtrlLoadMinLatency", Syntax::Integer, kMostInteger},
    {43, "rsvpSenderAdspecCtrlLoadMtu", Syntax::Integer, 65535},
    {44, "rsvpSenderStatus", Syntax::Enumeration, UINT32_MAX, kRowStates, kActive},
};

// What is reserved here, and what is asked of the hops before, have the same columns.
#define RESERVATION_OBJECTS(prefix)                                                                                  \
    {                                                                                                                \
        {2, prefix "Type", Syntax::Integer, 255}, {3, prefix "DestAddr", Syntax::Address},                           \
            {4, prefix "SenderAddr", Syntax::Address}, {5, prefix "DestAddrLength", Syntax::Integer, 128},           \
            {6, prefix "SenderAddrLength", Syntax::Integer, 128}, {8, prefix "DestPort", Syntax::Port},              \
            {9, prefix "Port", Syntax::Port}, {10, prefix "HopAddr", Syntax::Address},                               \
            {11, prefix "HopLih", Syntax::Integer}, {12, prefix "Interface", Syntax::Integer, kMostInteger},         \
            {13, prefix "Service", Syntax::Enumeration, UINT32_MAX, kServices},                                      \
            {14, prefix "TSpecRate", Syntax::BitRate}, {15, prefix "TSpecPeakRate", Syntax::BitRate},                \
            {16, prefix "TSpecBurst", Syntax::Octets}, {17, prefix "TSpecMinTU", Syntax::Octets},                    \
            {18, prefix "TSpecMaxTU", Syntax::Octets}, {19, prefix "RSpecRate", Syntax::BitRate},                    \
            {20, prefix "RSpecSlack", Syntax::Octets}, {21, prefix "Interval", Syntax::Milliseconds},                \
            {23, prefix "Shared", Syntax::Truth}, {24, prefix "Explicit", Syntax::Truth},                            \
            {28, prefix "Status", Syntax::Enumeration, UINT32_MAX, kRowStates, kActive},                             \
    }

constexpr uint32_t kResvEntry[] = {1, 3, 6, 1, 2, 1, 51, 1, 4, 1};
constexpr Object kResvObjects[] = RESERVATION_OBJECTS("rsvpResv");
constexpr uint32_t kResvFwdEntry[] = {1, 3, 6, 1, 2, 1, 51, 1, 5, 1};
constexpr Object kResvFwdObjects[] = RESERVATION_OBJECTS("rsvpResvFwd");

constexpr uint32_t kIfEntry[] = {1, 3, 6, 1, 2, 1, 51, 1, 6, 1};
constexpr Object kIfTableIndex[] = {{0, kIfIndex, Syntax::Integer, kMostInteger}};
constexpr Object kIfObjects[] = {
    {1, "rsvpIfUdpNbrs", Syntax::Gauge},
    {2, "rsvpIfIpNbrs", Syntax::Gauge},
    {3, "rsvpIfNbrs", Syntax::Gauge},
    {4, "rsvpIfRefreshBlockadeMultiple", Syntax::Integer, 65536},
    {5, "rsvpIfRefreshMultiple", Syntax::Integer, 65536},
    {6, "rsvpIfTTL", Syntax::Integer, 255},
    {7, "rsvpIfRefreshInterval", Syntax::Interval},
    {8, "rsvpIfRouteDelay", Syntax::Interval},
    {9, "rsvpIfEnabled", Syntax::Truth, UINT32_MAX, {}, {}, true},
    {10, "rsvpIfUdpRequired", Syntax::Truth},
    {11, "rsvpIfStatus", Syntax::Enumeration, UINT32_MAX, kRowStates, kActive},
};

constexpr uint32_t kNbrEntry[] = {1, 3, 6, 1, 2, 1, 51, 1, 7, 1};
constexpr Object kNbrIndex[] = {
    {0, kIfIndex, Syntax::Integer, kMostInteger},
    {1, "rsvpNbrAddress", Syntax::Address},
};
constexpr Object kNbrObjects[] = {
    {2, "rsvpNbrProtocol", Syntax::Enumeration, UINT32_MAX, kEncapsulations},
    {3, "rsvpNbrStatus", Syntax::Enumeration, UINT32_MAX, kRowStates, kActive},
};

// ---- RSVP-MOR-MIB -----------------------------------------------------------------------------------------------

constexpr uint32_t kAgentScalarsEntry[] = {1, 3, 6, 1, 3, 20650, 1, 1};
constexpr Object kAgentScalarObjects[] = {
    {1, "rsvpMorAgentUp", Syntax::Truth},          {2, "rsvpMorAgentMaxAge", Syntax::Ticks},
    {3, "rsvpMorAgentReadsDone", Syntax::Counter}, {4, "rsvpMorAgentReadsFailed", Syntax::Counter},
    {5, "rsvpMorAgentLastError", Syntax::Text},
};

constexpr uint32_t kCacheEntry[] = {1, 3, 6, 1, 3, 20650, 1, 2, 1};
constexpr Object kCacheIndex[] = {{1, "rsvpMorCacheIndex", Syntax::Unsigned}};
constexpr Object kCacheObjects[] = {
    {2, "rsvpMorCacheName", Syntax::Text},         {3, "rsvpMorCacheRows", Syntax::Gauge},
    {4, "rsvpMorCacheAge", Syntax::Ticks},         {5, "rsvpMorCacheServed", Syntax::Truth},
    {6, "rsvpMorCacheReadsDone", Syntax::Counter}, {7, "rsvpMorCacheReadsFailed", Syntax::Counter},
    {8, "rsvpMorCacheLastError", Syntax::Text},
};

const Object *FindIn(std::span<const Object> objects, std::string_view name)
{
    const auto found =
        std::find_if(objects.begin(), objects.end(), [&](const Object &one) { return one.name == name; });
    return found == objects.end() ? nullptr : &*found;
}

} // namespace

const MibTable kTunnelScalars{"mplsTunnelScalars", kTunnelScalarsEntry, {}, kTunnelScalarObjects};
const MibTable kTunnelTable{"mplsTunnelTable", kTunnelEntry, kTunnelIndex, kTunnelObjects};
const MibTable kResourceTable{"mplsTunnelResourceTable", kResourceEntry, kResourceIndex, kResourceObjects};
const MibTable kActualHopTable{"mplsTunnelARHopTable", kActualHopEntry, kActualHopIndex, kActualHopObjects};
const MibTable kComputedHopTable{"mplsTunnelCHopTable", kComputedHopEntry, kComputedHopIndex, kComputedHopObjects};
const MibTable kFrrConstraintsTable{"mplsFrrGeneralConstraintsTable", kFrrConstraintsEntry, kFrrConstraintsIndex,
                                    kFrrConstraintsObjects};
const MibTable kFrrHopTable{"mplsFrrGeneralTunnelARHopTable", kFrrHopEntry, kActualHopIndex, kFrrHopObjects};
const MibTable kFrrScalars{"mplsFrrScalars", kFrrScalarsEntry, {}, kFrrScalarObjects};
const MibTable kFrrFacilityTable{"mplsFrrFacilityDBTable", kFrrFacilityEntry, kFrrFacilityIndex, kFrrFacilityObjects};
const MibTable kSessionTable{"rsvpSessionTable", kSessionEntry, {}, kSessionObjects};
const MibTable kSenderTable{"rsvpSenderTable", kSenderEntry, {}, kSenderObjects};
const MibTable kResvTable{"rsvpResvTable", kResvEntry, {}, kResvObjects};
const MibTable kResvFwdTable{"rsvpResvFwdTable", kResvFwdEntry, {}, kResvFwdObjects};
const MibTable kIfTable{"rsvpIfTable", kIfEntry, kIfTableIndex, kIfObjects};
const MibTable kNbrTable{"rsvpNbrTable", kNbrEntry, kNbrIndex, kNbrObjects};
const MibTable kAgentScalars{"rsvpMorAgent", kAgentScalarsEntry, {}, kAgentScalarObjects};
const MibTable kCacheTable{"rsvpMorCacheTable", kCacheEntry, kCacheIndex, kCacheObjects};

const Object *MibTable::Find(std::string_view object) const
{
    const Object *found = FindIn(objects, object);
    return found != nullptr ? found : FindIn(index, object);
}

std::span<const MibTable *const> AllMibTables()
{
    static constexpr const MibTable *kAll[] = {
        &kTunnelScalars, &kTunnelTable,         &kResourceTable, &kActualHopTable, &kComputedHopTable,
        &kSessionTable,  &kSenderTable,         &kResvTable,     &kResvFwdTable,   &kIfTable,
        &kNbrTable,      &kFrrConstraintsTable, &kFrrHopTable,   &kFrrScalars,     &kFrrFacilityTable,
        &kAgentScalars,  &kCacheTable,
    };
    return kAll;
}

const Object *FindObject(std::string_view name)
{
    for (const MibTable *table : AllMibTables()) {
        if (const Object *object = table->Find(name))
            return object;
    }
    return nullptr;
}

} // namespace agentx
