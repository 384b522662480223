// The rows of RSVP-MIB, which come of three kinds of state blocks. Their objects are those of the standards, so what
// fills a column stands here, one line a column; only what the daemon numbers by itself goes through the dictionary.
#include "manager/record/text.h"
#include "manager/table/tables.h"
#include "tools/agentx/numbering.h"
#include "tools/agentx/reads.h"
#include "tools/agentx/tunnel_rows.h"

#include <bit>
#include <fmt/format.h>

namespace agentx {
namespace {

constexpr uint32_t kLspTunnelIpv4 = 7; // the C-Type of the SESSION of an LSP tunnel, RFC 3209
constexpr uint32_t kAddressBits = 32;
constexpr uint8_t kBreak = 0x80;   // of a service's header in an ADSPEC: a hop does not know the service
constexpr uint8_t kInvalid = 0x80; // of a parameter's header there: a hop could not tell it

// Numbers of services and parameters, RFC 2210 and RFC 2215.
constexpr uint8_t kGeneralService = 1;
constexpr uint8_t kGuaranteedService = 2;
constexpr uint8_t kControlledLoad = 5;
constexpr uint8_t kHopCount = 4;
constexpr uint8_t kPathBandwidth = 6;
constexpr uint8_t kMinLatency = 8;
constexpr uint8_t kComposedMtu = 10;
constexpr uint8_t kRspec = 130;
constexpr uint8_t kCtot = 133;
constexpr uint8_t kDtot = 134;
constexpr uint8_t kCsum = 135;
constexpr uint8_t kDsum = 136;

using MaybeCell = std::optional<Cell>;

MaybeCell Rate(const uint8_t (&bytesPerSecond)[4])
{
    return CellOf(Syntax::BitRate, double{manager::NetFloat(bytesPerSecond)} * 8);
}

MaybeCell Octets(double octets)
{
    return CellOf(Syntax::Octets, octets);
}

/** What fills a column, from a record that holds all of a row. The column is named by what follows its table's
 * prefix: what is reserved here and what is asked of the hops before differ in nothing else. */
template <typename Record> struct Exact {
    const char *name;
    MaybeCell (*get)(const Record &record);
};

/** The columns of one table, found once. */
template <typename Record> class ExactColumns {
public:
    ExactColumns(const MibTable &table, const std::string &prefix, std::span<const Exact<Record>> all)
    {
        for (const Exact<Record> &one : all)
            columns_.emplace_back(table.Find(prefix + one.name), one.get);
    }

    void Put(const Record &record, Builder &builder) const
    {
        for (const auto &[object, get] : columns_) {
            if (MaybeCell cell = get(record))
                builder.Put(*object, std::move(*cell));
        }
    }

private:
    std::vector<std::pair<const Object *, decltype(Exact<Record>::get)>> columns_;
};

// ---- Sessions ---------------------------------------------------------------------------------------------------

using SessionKey = std::array<uint32_t, 3>;

SessionKey KeyOf(const RSVP_MOR_Session &session)
{
    return {session.tunnelEndpoint, session.tunnelId, session.extendedTunnelId};
}

/** A session and the blocks that belong to it. */
struct SessionRow {
    RSVP_MOR_Session session;
    uint32_t senders = 0;
    uint32_t receivers = 0;
    uint32_t requests = 0;
};

constexpr Exact<SessionRow> kSessionColumns[] = {
    {"Type", [](const SessionRow &) -> MaybeCell { return kLspTunnelIpv4; }},
    {"DestAddr", [](const SessionRow &row) -> MaybeCell { return AddressOctets(row.session.tunnelEndpoint); }},
    {"DestAddrLength", [](const SessionRow &) -> MaybeCell { return kAddressBits; }},
    {"Port", [](const SessionRow &row) -> MaybeCell { return PortOctets(row.session.tunnelId); }},
    {"Senders", [](const SessionRow &row) -> MaybeCell { return row.senders; }},
    {"Receivers", [](const SessionRow &row) -> MaybeCell { return row.receivers; }},
    {"Requests", [](const SessionRow &row) -> MaybeCell { return row.requests; }},
};

// ---- Senders ----------------------------------------------------------------------------------------------------

using Psb = RSVP_MOR_ReplyPsb;

bool HasAdspec(const Psb &block)
{
    return block.adspec.generalHeader[0] == kGeneralService;
}

bool IsThere(const RSVP_MOR_AdspecParam &parameter, uint8_t number)
{
    return parameter.paramHeader[0] == number && (parameter.paramHeader[1] & kInvalid) == 0;
}

// Among the four places of a service's own parameters, each of which may hold any.
const RSVP_MOR_AdspecParam *FindParameter(std::span<const RSVP_MOR_AdspecParam> parameters, uint8_t number)
{
    const auto found = std::find_if(parameters.begin(), parameters.end(),
                                    [&](const RSVP_MOR_AdspecParam &one) { return IsThere(one, number); });
    return found == parameters.end() ? nullptr : &*found;
}

MaybeCell ParameterCell(const RSVP_MOR_AdspecParam *parameter, uint8_t number)
{
    if (parameter == nullptr)
        return std::nullopt;
    const uint32_t value = parameter->paramValue;
    switch (number) {
    case kPathBandwidth:
        return CellOf(Syntax::BitRate, double{std::bit_cast<float>(value)} * 8);
    case kMinLatency:
        return value > INT32_MAX ? std::nullopt : MaybeCell(value); // all ones: nobody knows it
    case kHopCount:
    case kComposedMtu:
        return value > UINT16_MAX ? std::nullopt : MaybeCell(value);
    default:
        return Octets(value);
    }
}

template <uint8_t Number, RSVP_MOR_AdspecParam RSVP_MOR_Adspec::*Member> MaybeCell General(const Psb &block)
{
    const RSVP_MOR_AdspecParam &parameter = block.adspec.*Member;
    return ParameterCell(IsThere(parameter, Number) ? &parameter : nullptr, Number);
}

template <uint8_t Number> MaybeCell Guaranteed(const Psb &block)
{
    const bool isTerm = Number >= kCtot;
    return ParameterCell(
        FindParameter(isTerm ? block.adspec.guaranteedParams : block.adspec.guaranteedOverrides, Number), Number);
}

template <uint8_t Number> MaybeCell Load(const Psb &block)
{
    return ParameterCell(FindParameter(block.adspec.loadOverrides, Number), Number);
}

template <typename Get> MaybeCell IfAdspec(const Psb &block, Get get)
{
    return HasAdspec(block) ? MaybeCell(get(block.adspec)) : std::nullopt;
}

constexpr Exact<Psb> kSenderColumns[] = {
    {"Type", [](const Psb &) -> MaybeCell { return kLspTunnelIpv4; }},
    {"DestAddr", [](const Psb &block) -> MaybeCell { return AddressOctets(block.session.tunnelEndpoint); }},
    {"Addr", [](const Psb &block) -> MaybeCell { return AddressOctets(block.sender.senderAddress); }},
    {"DestAddrLength", [](const Psb &) -> MaybeCell { return kAddressBits; }},
    {"AddrLength", [](const Psb &) -> MaybeCell { return kAddressBits; }},
    {"DestPort", [](const Psb &block) -> MaybeCell { return PortOctets(block.session.tunnelId); }},
    {"Port", [](const Psb &block) -> MaybeCell { return PortOctets(block.sender.lspId); }},
    {"HopAddr", [](const Psb &block) -> MaybeCell { return AddressOctets(block.hop.hopAddress); }},
    {"HopLih", [](const Psb &block) -> MaybeCell { return block.hop.logicalIfHandle; }},
    {"TSpecRate", [](const Psb &block) { return Rate(block.tspec.tokenRate); }},
    {"TSpecPeakRate", [](const Psb &block) { return Rate(block.tspec.peakRate); }},
    {"TSpecBurst", [](const Psb &block) { return Octets(manager::NetFloat(block.tspec.bucketSize)); }},
    {"TSpecMinTU", [](const Psb &block) { return Octets(block.tspec.minPolicedUnit); }},
    {"TSpecMaxTU", [](const Psb &block) { return Octets(block.tspec.maxPacketSize); }},
    {"AdspecBreak",
     [](const Psb &block) {
         return IfAdspec(block, [](const auto &adspec) { return TruthOf((adspec.generalHeader[1] & kBreak) != 0); });
     }},
    {"AdspecHopCount", General<kHopCount, &RSVP_MOR_Adspec::hopCount>},
    {"AdspecPathBw", General<kPathBandwidth, &RSVP_MOR_Adspec::pathBandwidth>},
    {"AdspecMinLatency", General<kMinLatency, &RSVP_MOR_Adspec::minPathLatency>},
    {"AdspecMtu", General<kComposedMtu, &RSVP_MOR_Adspec::composedMtu>},
    {"AdspecGuaranteedSvc",
     [](const Psb &block) {
         return IfAdspec(
             block, [](const auto &adspec) { return TruthOf(adspec.guaranteedHeader[0] == kGuaranteedService); });
     }},
    {"AdspecGuaranteedBreak",
     [](const Psb &block) {
         return IfAdspec(block,
                         [](const auto &adspec) { return TruthOf((adspec.guaranteedHeader[1] & kBreak) != 0); });
     }},
    {"AdspecGuaranteedCtot", Guaranteed<kCtot>},
    {"AdspecGuaranteedDtot", Guaranteed<kDtot>},
    {"AdspecGuaranteedCsum", Guaranteed<kCsum>},
    {"AdspecGuaranteedDsum", Guaranteed<kDsum>},
    {"AdspecGuaranteedHopCount", Guaranteed<kHopCount>},
    {"AdspecGuaranteedPathBw", Guaranteed<kPathBandwidth>},
    {"AdspecGuaranteedMinLatency", Guaranteed<kMinLatency>},
    {"AdspecGuaranteedMtu", Guaranteed<kComposedMtu>},
    {"AdspecCtrlLoadSvc",
     [](const Psb &block) {
         return IfAdspec(block, [](const auto &adspec) { return TruthOf(adspec.loadHeader[0] == kControlledLoad); });
     }},
    {"AdspecCtrlLoadBreak",
     [](const Psb &block) {
         return IfAdspec(block, [](const auto &adspec) { return TruthOf((adspec.loadHeader[1] & kBreak) != 0); });
     }},
    {"AdspecCtrlLoadHopCount", Load<kHopCount>},
    {"AdspecCtrlLoadPathBw", Load<kPathBandwidth>},
    {"AdspecCtrlLoadMinLatency", Load<kMinLatency>},
    {"AdspecCtrlLoadMtu", Load<kComposedMtu>},
};

// ---- Reservations -----------------------------------------------------------------------------------------------

/** One reservation, be it in a block of this router's own or in one for the hops before. */
struct Reservation {
    const RSVP_MOR_Session &session;
    const RSVP_MOR_Hop &hop;
    const RSVP_MOR_Sender &filter;
    const RSVP_MOR_FlowSpec &flow;
    uint32_t style;
};

MaybeCell ServiceOf(const Reservation &row)
{
    switch (row.flow.serviceHeader[0]) {
    case kGuaranteedService:
        return uint32_t{2};
    case kControlledLoad:
        return uint32_t{5};
    default:
        return std::nullopt;
    }
}

bool HasRspec(const Reservation &row)
{
    return row.flow.rspecParamHeader[0] == kRspec;
}

// The option vector of STYLE: two bits of sharing in front of three of sender selection, RFC 2205.
bool IsShared(uint32_t style)
{
    return (style >> 3 & 3) == 2;
}
bool IsExplicit(uint32_t style)
{
    return (style & 7) == 2;
}

constexpr Exact<Reservation> kReservationColumns[] = {
    {"Type", [](const Reservation &) -> MaybeCell { return kLspTunnelIpv4; }},
    {"DestAddr", [](const Reservation &row) -> MaybeCell { return AddressOctets(row.session.tunnelEndpoint); }},
    {"SenderAddr", [](const Reservation &row) -> MaybeCell { return AddressOctets(row.filter.senderAddress); }},
    {"DestAddrLength", [](const Reservation &) -> MaybeCell { return kAddressBits; }},
    {"SenderAddrLength", [](const Reservation &) -> MaybeCell { return kAddressBits; }},
    {"DestPort", [](const Reservation &row) -> MaybeCell { return PortOctets(row.session.tunnelId); }},
    {"Port", [](const Reservation &row) -> MaybeCell { return PortOctets(row.filter.lspId); }},
    {"HopAddr", [](const Reservation &row) -> MaybeCell { return AddressOctets(row.hop.hopAddress); }},
    {"HopLih", [](const Reservation &row) -> MaybeCell { return row.hop.logicalIfHandle; }},
    {"Service", ServiceOf},
    {"TSpecRate", [](const Reservation &row) { return Rate(row.flow.tokenRate); }},
    {"TSpecPeakRate", [](const Reservation &row) { return Rate(row.flow.peakRate); }},
    {"TSpecBurst", [](const Reservation &row) { return Octets(manager::NetFloat(row.flow.bucketSize)); }},
    {"TSpecMinTU", [](const Reservation &row) { return Octets(row.flow.minPolicedUnit); }},
    {"TSpecMaxTU", [](const Reservation &row) { return Octets(row.flow.maxPacketSize); }},
    {"RSpecRate", [](const Reservation &row) { return HasRspec(row) ? Rate(row.flow.rspecRate) : std::nullopt; }},
    {"RSpecSlack", [](const Reservation &row) { return HasRspec(row) ? Octets(row.flow.slackTerm) : std::nullopt; }},
    {"Shared", [](const Reservation &row) -> MaybeCell { return TruthOf(IsShared(row.style)); }},
    {"Explicit", [](const Reservation &row) -> MaybeCell { return TruthOf(IsExplicit(row.style)); }},
};

// ---- The job ----------------------------------------------------------------------------------------------------

/** What stays from one read to the next: the numbers of rows. */
struct StateReader {
    StateReader(const manager::Dictionary &itsDictionary, std::shared_ptr<TunnelAttributes> itsAttributes)
        : dictionary(itsDictionary), attributes(std::move(itsAttributes)),
          senderNames(kSenderTable, manager::kPathState.row(), dictionary),
          resvNames(kResvTable, manager::kReservationState.row(), dictionary),
          fwdNames(kResvFwdTable, manager::kPreviousHopState.row(), dictionary)
    {
    }

    std::vector<Snapshot> Read()
    {
        rows.clear();
        sessionNumbers.BeginRound();
        senderNumbers.BeginRound();
        resvNumbers.BeginRound();
        fwdNumbers.BeginRound();
        std::vector<Snapshot> results;
        Snapshot ofSenders = Senders();
        Snapshot ofResv = Reservations();
        Snapshot ofFwd = Requests();
        results.push_back(Sessions());
        results.push_back(std::move(ofSenders));
        results.push_back(std::move(ofResv));
        results.push_back(std::move(ofFwd));
        sessionNumbers.EndRound();
        senderNumbers.EndRound();
        resvNumbers.EndRound();
        fwdNumbers.EndRound();
        return results;
    }

    SessionRow &SessionOf(const RSVP_MOR_Session &session)
    {
        return rows.try_emplace(sessionNumbers.Of(KeyOf(session)), SessionRow{session}).first->second;
    }

    Oid IndexOf(const RSVP_MOR_Session &session, uint32_t number)
    {
        return {sessionNumbers.Of(KeyOf(session)), number};
    }

    Snapshot Senders()
    try {
        attributes->byTunnel.reset();
        std::map<TunnelName, RSVP_MOR_SessionAttr> byTunnel;
        Builder builder(kSenderTable);
        ReadAll(manager::kPathState, dictionary, [&](const void *row) {
            const Psb &block = *static_cast<const Psb *>(row);
            ++SessionOf(block.session).senders;
            const uint32_t number =
                senderNumbers.OfNext({KeyOf(block.session), {block.sender.senderAddress, block.sender.lspId}});
            builder.Begin(IndexOf(block.session, number));
            senderColumns.Put(block, builder);
            senderNames.PutCells(row, builder);
            if (block.sessionAttr.kind != 0)
                byTunnel[{block.session.tunnelId, block.sender.lspId, block.sender.senderAddress,
                          block.session.tunnelEndpoint}] = block.sessionAttr;
        });
        attributes->byTunnel = std::move(byTunnel);
        return builder.Finish();
    } catch (const ReadError &error) {
        attributes->problem = error.what();
        throw;
    }

    Snapshot Reservations()
    {
        Builder builder(kResvTable);
        ReadAll(manager::kReservationState, dictionary, [&](const void *row) {
            const auto &block = *static_cast<const RSVP_MOR_ReplyRsb *>(row);
            ++SessionOf(block.session).receivers;
            const Reservation one{block.session, block.hop, block.filter, block.flowSpec, block.style};
            Put(one, resvNumbers, resvColumns, resvNames, row, builder);
        });
        return builder.Finish();
    }

    // A block asks one hop for all that the session needs of it: a row for each sender that it names.
    Snapshot Requests()
    {
        Builder builder(kResvFwdTable);
        ReadAll(manager::kPreviousHopState, dictionary, [&](const void *row) {
            const auto &block = *static_cast<const RSVP_MOR_ReplyPhsb *>(row);
            ++SessionOf(block.session).requests;
            for (const RSVP_MOR_ReplyFDInfo *flow = block.fdList; flow != nullptr; flow = flow->next) {
                for (const RSVP_MOR_ReplyFSInfo *one = flow->fsList; one != nullptr; one = one->next) {
                    const Reservation asked{block.session, block.hop, one->filter, flow->flowSpec, block.style};
                    Put(asked, fwdNumbers, fwdColumns, fwdNames, row, builder);
                }
            }
        });
        return builder.Finish();
    }

    Snapshot Sessions()
    {
        Builder builder(kSessionTable);
        for (const auto &[number, row] : rows) {
            builder.Begin({number});
            sessionColumns.Put(row, builder);
        }
        return builder.Finish();
    }

    using SenderKey = std::pair<SessionKey, std::array<uint32_t, 2>>;
    using ReservationKey = std::pair<SessionKey, std::array<uint32_t, 4>>;

    void Put(const Reservation &row, Numbering<ReservationKey> &numbers, const ExactColumns<Reservation> &columns,
             const Mapping &names, const void *record, Builder &builder)
    {
        const uint32_t number = numbers.OfNext(
            {KeyOf(row.session),
             {row.hop.hopAddress, row.hop.logicalIfHandle, row.filter.senderAddress, row.filter.lspId}});
        builder.Begin(IndexOf(row.session, number));
        columns.Put(row, builder);
        names.PutCells(record, builder);
    }

    const manager::Dictionary &dictionary;
    std::shared_ptr<TunnelAttributes> attributes;
    Mapping senderNames;
    Mapping resvNames;
    Mapping fwdNames;
    ExactColumns<SessionRow> sessionColumns{kSessionTable, "rsvpSession", kSessionColumns};
    ExactColumns<Psb> senderColumns{kSenderTable, "rsvpSender", kSenderColumns};
    ExactColumns<Reservation> resvColumns{kResvTable, "rsvpResv", kReservationColumns};
    ExactColumns<Reservation> fwdColumns{kResvFwdTable, "rsvpResvFwd", kReservationColumns};
    Numbering<SessionKey> sessionNumbers;
    Numbering<SenderKey> senderNumbers;
    Numbering<ReservationKey> resvNumbers;
    Numbering<ReservationKey> fwdNumbers;
    std::map<uint32_t, SessionRow> rows; // of this read, by number
};

} // namespace

std::unique_ptr<Job> MakeStateJob(const manager::Dictionary &dictionary, std::shared_ptr<TunnelAttributes> attributes)
{
    auto reader = std::make_shared<StateReader>(dictionary, std::move(attributes));
    return std::make_unique<Job>(std::vector{&kSessionTable, &kSenderTable, &kResvTable, &kResvFwdTable},
                                 [reader] { return reader->Read(); });
}

} // namespace agentx
