// The jobs of what comes row by row as it is, and how any job runs.
#include "tools/agentx/reads.h"

#include "manager/exchange/exchange.h"
#include "manager/table/session.h"
#include "manager/table/tables.h"
#include "manager/table/walk.h"
#include "tools/agentx/tunnel_rows.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace agentx {
namespace {

// More rows than any router has: a daemon that goes on for ever must not fill the memory.
constexpr uint64_t kMostRows = 1'000'000;

std::atomic<bool> daemonIsUp = false;

// The daemon is up if it answers, be it with a refusal.
void NoteAnswer(uint32_t status)
{
    const manager::Fault fault = manager::FaultOf(status, manager::LastExchange());
    daemonIsUp = status == RSVP_MOR_OK || fault == manager::Fault::Refused || fault == manager::Fault::BadReply;
}

std::string StatusText(const char *function, uint32_t status)
{
    const manager::Exchange &exchange = manager::LastExchange();
    return fmt::format("{}: 0x{:08x}, {}", function, status,
                       manager::TextOf(manager::FaultOf(status, exchange), exchange));
}

void Require(const manager::Session &session)
{
    if (!session.IsMissing())
        return;
    NoteAnswer(RSVP_MOR_ERR_LIPC);
    ThrowStatus("RSVP_MOR_LIPCOpen", RSVP_MOR_ERR_LIPC);
}

/** A table whose rows are rows of one of the daemon's, and what each tells without a dictionary. */
struct PlainTable {
    const MibTable *mib;
    const manager::Table *table;
    std::vector<KnownField> known;
};

const std::vector<PlainTable> &PlainTables()
{
    static const std::vector<PlainTable> all{
        {&kResourceTable, &manager::kResources, {{"mplsTunnelResourceIndex", "resourceIndex"}}},
        {&kActualHopTable,
         &manager::kActualHops,
         {{"mplsTunnelARHopListIndex", "hopListIndex"}, {"mplsTunnelARHopIndex", "hopIndex"}}},
        {&kComputedHopTable,
         &manager::kComputedHops,
         {{"mplsTunnelCHopListIndex", "hopListIndex"}, {"mplsTunnelCHopIndex", "hopIndex"}}},
        {&kFrrConstraintsTable, &manager::kFrrGeneral, {}},
        {&kFrrHopTable, &manager::kExtendedHops, {}},
        {&kFrrFacilityTable, &manager::kFrrFacility, {}},
    };
    return all;
}
const PlainTable kNeighbourRows{&kNbrTable, &manager::kNeighbours, {}};
const PlainTable kInterfaceRows{&kIfTable, &manager::kInterfaces, {}};

/** How many rows have an index that begins with this number. */
uint32_t RowsBelow(const Snapshot &table, uint32_t first)
{
    const auto from = [&](uint64_t number) { return table.NotBefore(std::span<const uint64_t>(&number, 1)); };
    return static_cast<uint32_t>(from(uint64_t{first} + 1) - from(first));
}

// What holds for the device holds for each of its interfaces.
RSVP_MOR_GlobalInfo ReadGlobal()
{
    RSVP_MOR_GlobalInfo global{};
    const manager::RowRead &get = manager::kGlobalInfo.get;
    const manager::Session session(get.held);
    Require(session);
    const uint32_t status = manager::ReadRow(manager::kGlobalInfo, get, session.Fd(), nullptr, &global);
    NoteAnswer(status);
    if (status != RSVP_MOR_OK)
        ThrowStatus(get.function, status);
    return global;
}

/** Puts what a row has from elsewhere than its own record. */
using PutMore = std::function<void(const Oid &index, Builder &builder)>;

/** Takes what one read needs from elsewhere. Throws ReadError. */
using PrepareMore = std::function<PutMore()>;

// Null if the dictionary does not tell the index.
std::unique_ptr<Job> MakePlainJob(const PlainTable &plain, const manager::Dictionary &dictionary,
                                  const PrepareMore &prepare = nullptr)
{
    const Mapping mapping(*plain.mib, plain.table->row(), dictionary, plain.known);
    if (!mapping.HasIndex())
        return nullptr;
    return std::make_unique<Job>(std::vector{plain.mib}, [=, &plain, &dictionary] {
        Builder builder(*plain.mib);
        const PutMore putMore = prepare ? prepare() : nullptr;
        ReadAll(*plain.table, dictionary, [&](const void *row) {
            const auto index = mapping.IndexOf(row);
            if (!index)
                return;
            builder.Begin(*index);
            mapping.PutCells(row, builder);
            if (putMore)
                putMore(*index, builder);
        });
        std::vector<Snapshot> result;
        result.push_back(builder.Finish());
        return result;
    });
}

// An interface has what holds for the whole device, and as many neighbours as rsvpNbrTable has rows of it.
std::unique_ptr<Job> MakeInterfaceJob(const manager::Dictionary &dictionary, const Published *neighbours)
{
    const Mapping ofAll(kIfTable, manager::kGlobalInfo.row(), dictionary);
    return MakePlainJob(kInterfaceRows, dictionary, [=]() -> PutMore {
        const RSVP_MOR_GlobalInfo global = ofAll.HasColumns() ? ReadGlobal() : RSVP_MOR_GlobalInfo{};
        const auto known = neighbours != nullptr ? neighbours->NewestIfWell() : nullptr;
        return [=](const Oid &index, Builder &builder) {
            ofAll.PutCells(&global, builder);
            if (known != nullptr)
                builder.Put(*kIfTable.Find("rsvpIfNbrs"), RowsBelow(*known, index.front()));
        };
    });
}

std::unique_ptr<Job> MakeFrrScalarsJob()
{
    return std::make_unique<Job>(std::vector{&kFrrScalars}, [] {
        struct Count {
            std::string_view object;
            const char *function;
            uint32_t (*read)(uint32_t *count);
        };
        static constexpr Count kCounts[] = {
            {"mplsFrrConfiguredInterfaces", "RSVP_MOR_GetFrrIfNum", RSVP_MOR_GetFrrIfNum},
            {"mplsFrrActiveInterfaces", "RSVP_MOR_GetFrrActiveIfNum", RSVP_MOR_GetFrrActiveIfNum},
            {"mplsFrrActiveBypassTunnels", "RSVP_MOR_GetActBypassTunnels", RSVP_MOR_GetActBypassTunnels},
        };
        Builder builder(kFrrScalars);
        builder.Begin({0});
        for (const Count &one : kCounts) {
            uint32_t count = 0;
            manager::ForgetExchange();
            const uint32_t status = one.read(&count);
            NoteAnswer(status);
            if (status != RSVP_MOR_OK)
                ThrowStatus(one.function, status);
            builder.Put(*kFrrScalars.Find(one.object), count);
        }
        std::vector<Snapshot> result;
        result.push_back(builder.Finish());
        return result;
    });
}

} // namespace

void ThrowStatus(const char *function, uint32_t status)
{
    throw ReadError(StatusText(function, status));
}

void ReadAll(const manager::Table &table, const manager::Dictionary &dictionary,
             const std::function<void(const void *)> &onRow)
{
    manager::ForgetExchange();
    const manager::Session session(table.first.held);
    Require(session);
    uint64_t rows = 0;
    const manager::WalkResult walk = manager::Walk(table, dictionary, session.Fd(), nullptr, [&](const void *row) {
        if (rows++ == kMostRows)
            return false;
        onRow(row);
        return true;
    });
    switch (walk.end) {
    case manager::WalkEnd::EndOfTable:
        NoteAnswer(RSVP_MOR_OK);
        return;
    case manager::WalkEnd::Broken:
        NoteAnswer(walk.status);
        throw ReadError(
            fmt::format("{}, row {}: {}", table.name, walk.rows + 1, StatusText(walk.function, walk.status)));
    case manager::WalkEnd::Stuck:
        throw ReadError(fmt::format("{}: the walk is stuck at row {}", table.name, walk.rows + 1));
    case manager::WalkEnd::NoKey:
        throw ReadError(fmt::format("{}: the dictionary has no next-key for it", table.name));
    case manager::WalkEnd::Stopped:
        throw ReadError(fmt::format("{}: there are more than {} rows", table.name, kMostRows));
    }
}

// ---- Job ----

Job::Job(const std::vector<const MibTable *> &tables, Read read) : read_(std::move(read))
{
    for (const MibTable *table : tables)
        tables_.push_back(std::make_unique<Published>(*table));
}

std::string Job::Run()
{
    const Clock::time_point begun = Clock::now();
    std::vector<std::string_view> names; // of those whose state is another than before
    try {
        std::vector<Snapshot> results = read_();
        for (size_t i = 0; i < tables_.size(); ++i) {
            if (tables_[i]->Done(std::move(results[i]), begun))
                names.push_back(tables_[i]->Table().name);
        }
        return names.empty() ? "" : fmt::format("{} can be read again", fmt::join(names, ", "));
    } catch (const ReadError &error) {
        for (const auto &table : tables_) {
            if (table->Failed(error.what()))
                names.push_back(table->Table().name);
        }
        return names.empty() ? "" : fmt::format("{} could not be read: {}", fmt::join(names, ", "), error.what());
    }
}

bool Job::IsDaemonUp()
{
    return daemonIsUp;
}

// ---- All jobs ----

std::vector<const Published *> Jobs::Tables() const
{
    std::vector<const Published *> all;
    for (const auto *group : {&state, &others}) {
        for (const auto &job : *group) {
            for (const auto &table : job->Tables())
                all.push_back(table.get());
        }
    }
    return all;
}

Jobs MakeJobs(const manager::Dictionary &dictionary)
{
    std::vector<Source> sources{
        {&manager::kGlobalInfo.row(), &kIfTable},         {&manager::kPathState.row(), &kSenderTable},
        {&manager::kReservationState.row(), &kResvTable}, {&manager::kPreviousHopState.row(), &kResvFwdTable},
        {&manager::kTunnels.row(), &kTunnelTable},        {&manager::kCrLsps.row(), &kTunnelTable},
    };
    for (const PlainTable &plain : PlainTables())
        sources.push_back({&plain.table->row(), plain.mib});
    for (const PlainTable *plain : {&kNeighbourRows, &kInterfaceRows})
        sources.push_back({&plain->table->row(), plain->mib});
    CheckNames(dictionary, sources);

    Jobs jobs;
    auto attributes = std::make_shared<TunnelAttributes>();
    jobs.state.push_back(MakeStateJob(dictionary, attributes));
    if (auto tunnels = MakeTunnelJob(dictionary, attributes))
        jobs.state.push_back(std::move(tunnels));
    for (const PlainTable &plain : PlainTables()) {
        if (auto job = MakePlainJob(plain, dictionary))
            jobs.others.push_back(std::move(job));
    }
    const Published *neighbours = nullptr;
    if (auto job = MakePlainJob(kNeighbourRows, dictionary)) {
        neighbours = job->Tables().front().get();
        jobs.others.push_back(std::move(job));
    }
    if (auto job = MakeInterfaceJob(dictionary, neighbours)) {
        jobs.interfaces = job.get();
        jobs.others.push_back(std::move(job));
    }
    jobs.others.push_back(MakeFrrScalarsJob());
    return jobs;
}

} // namespace agentx
