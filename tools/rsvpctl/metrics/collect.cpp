// The reads of a run. A table is walked once and nothing of it is kept but figures; what broke in the middle leaves
// none at all, since half a count looks like a whole one.
#include "tools/rsvpctl/metrics/collect.h"

#include "manager/exchange/deadline.h"
#include "manager/exchange/exchange.h"
#include "manager/record/text.h"
#include "manager/table/counts.h"
#include "manager/table/session.h"
#include "manager/table/tables.h"
#include "manager/table/walk.h"
#include "tools/rsvpctl/command/service_state.h"
#include "tools/rsvpctl/metrics/table_figures.h"
#include "tools/rsvpctl/print/names.h"

#include <fmt/format.h>
#include <functional>
#include <list>

namespace rsvpctl {
namespace {

using manager::Table, manager::WalkEnd, manager::WalkResult;

/** Seconds since it was made. */
class Stopwatch {
public:
    double Seconds() const { return std::chrono::duration<double>(Clock::now() - begin_).count(); }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point begin_ = Clock::now();
};

std::string ProblemOf(const char *function, uint32_t status)
{
    const manager::Exchange &exchange = manager::LastExchange();
    return fmt::format("{} gave {:#010x}: {}", function, status, TextOf(FaultOf(status, exchange), exchange));
}

// An empty text for a table that was read as a whole.
std::string ProblemOf(const WalkResult &result)
{
    switch (result.end) {
    case WalkEnd::EndOfTable:
        return "";
    case WalkEnd::Stuck:
        return fmt::format("{} gave a row that was there before", result.function);
    case WalkEnd::NoKey:
        return "no dictionary says which fields of a row are the key of the next";
    default:
        return ProblemOf(result.function, result.status);
    }
}

class Collector {
public:
    Collector(Output &out, const Wanted &wanted) : out_(out), wanted_(wanted) {}

    Exposition Run();

private:
    bool ReadDaemon();
    void ReadService();

    // Each gives what went wrong, or an empty text.
    std::string ReadCounts();
    std::string ReadGlobal();
    std::string ReadTable(const Table &table);
    void Read(const char *name, const std::function<std::string()> &read);

    Family &Gauge(const char *name, const char *help) { return document_.Add(name, Family::Kind::Gauge, help); }

    Output &out_;
    const Wanted &wanted_;
    Exposition document_;
    const Stopwatch stopwatch_;
    Family &build_ = Gauge("build_info", "The program and the daemon that its dictionary is for");
    Family &begun_ = Gauge("run_timestamp_seconds", "When the run began, in seconds since 1970");
    Family &took_ = Gauge("run_duration_seconds", "How long the run took");
    Family &service_ = Gauge("service_up", "Whether the service is known to run on the node");
    Family &daemon_ = Gauge("daemon_up", "Whether the daemon answers");
    Family &success_ = Gauge("read_success", "Whether the table was read as a whole");
    Family &duration_ = Gauge("read_duration_seconds", "How long the read of the table took");
    Family &rows_ = Gauge("table_rows", "Rows of the table");
    Family &leftOut_ = Gauge("rows_left_out", "Rows that have no figures of their own, being beyond the limit");
    std::list<TableFigures> tables_;
    bool answers_ = false;
    std::vector<std::string> notRead_;
};

bool Collector::ReadDaemon()
{
    const uint32_t status = AskDaemon();
    daemon_.Add(IsAnswer(status) ? 1 : 0);
    if (!IsAnswer(status))
        out_.Message("rsvpctl: metrics: the daemon does not answer: " + ProblemOf("RSVP_MOR_GetRsvpDebug", status));
    return IsAnswer(status);
}

void Collector::ReadService()
{
    for (const DeviceNode &node : AskService().nodes)
        service_.Add({{"node", std::to_string(node.node)}, {"role", std::string(node.role)}},
                     node.service == Running::Yes ? 1 : 0);
}

// What cannot succeed any more is not tried.
void Collector::Read(const char *name, const std::function<std::string()> &read)
{
    const manager::Deadline *deadline = manager::Deadline::Current();
    if (!answers_ || (deadline != nullptr && deadline->State() != manager::GivenUp::No)) {
        success_.Add({{"table", name}}, 0);
        notRead_.emplace_back(name);
        return;
    }
    const Stopwatch stopwatch;
    const std::string problem = read();
    duration_.Add({{"table", name}}, stopwatch.Seconds());
    success_.Add({{"table", name}}, problem.empty() ? 1 : 0);
    if (!problem.empty())
        out_.Message(fmt::format("rsvpctl: metrics: {}: {}", name, problem));
}

std::string Collector::ReadCounts()
{
    std::string problem;
    for (const manager::Count &count : manager::AllCounts()) {
        uint32_t number = 0;
        const uint32_t status = count.read(&number);
        if (status == RSVP_MOR_OK)
            Gauge(SnakeCase(count.name).c_str(), count.help).Add(number);
        else if (problem.empty())
            problem = ProblemOf(count.function, status);
    }
    return problem;
}

std::string Collector::ReadGlobal()
{
    const Table &table = manager::kGlobalInfo;
    const manager::Session session(table.get.held);
    TableFigures figures(table, Names(), 1);
    std::vector<std::byte> record(table.row().size);
    const uint32_t status =
        session.IsMissing() ? RSVP_MOR_ERR_LIPC : ReadRow(table, table.get, session.Fd(), nullptr, record.data());
    if (status != RSVP_MOR_OK)
        return ProblemOf(table.get.function, status);
    figures.Take(record.data());
    tables_.push_back(std::move(figures));
    return "";
}

std::string Collector::ReadTable(const Table &table)
{
    // Interfaces are few, and each is known by its index alone.
    const bool isOneByOne = (wanted_.rows || &table == &manager::kInterfaces) && !Names().Daemon().empty();
    TableFigures figures(table, Names(), isOneByOne ? wanted_.mostRows : 0);
    const manager::Session session(table.first.held);
    const WalkResult result = session.IsMissing()
                                  ? WalkResult{WalkEnd::Broken, 0, RSVP_MOR_ERR_LIPC, "RSVP_MOR_LIPCOpen", ""}
                                  : Walk(table, Names(), session.Fd(), nullptr, [&](void *row) {
                                        figures.Take(row);
                                        return true;
                                    });
    if (std::string problem = ProblemOf(result); !problem.empty())
        return problem;
    rows_.Add({{"table", table.name}}, static_cast<double>(result.rows));
    if (isOneByOne)
        leftOut_.Add({{"table", table.name}}, static_cast<double>(figures.LeftOut()));
    tables_.push_back(std::move(figures));
    return "";
}

Exposition Collector::Run()
{
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    begun_.Add(std::chrono::duration<double>(now).count());
    build_.Add({{"version", RSVPCTL_VERSION}, {"dictionary", Names().Daemon()}}, 1);
    out_.TellMissingNames();
    ReadService();
    answers_ = ReadDaemon();
    Read("counters", [this] { return ReadCounts(); });
    Read(manager::kGlobalInfo.name, [this] { return ReadGlobal(); });
    for (const Table *table : wanted_.tables)
        Read(table->name, [&] { return ReadTable(*table); });
    for (const TableFigures &figures : tables_)
        figures.AddTo(document_);
    if (answers_ && !notRead_.empty())
        out_.Message("rsvpctl: metrics: the time is over; not read: " + manager::Joined(notRead_, ", "));
    took_.Add(stopwatch_.Seconds());
    return std::move(document_);
}

} // namespace

std::vector<const Table *> UsualTables()
{
    return {&manager::kInterfaces,       &manager::kNeighbours,    &manager::kFrrGeneral,
            &manager::kFrrFacility,      &manager::kTunnels,       &manager::kCrLsps,
            &manager::kP2mpCrLsps,       &manager::kPathState,     &manager::kReservationState,
            &manager::kPreviousHopState, &manager::kP2mpPathState, &manager::kP2mpReservationState};
}

Exposition Collect(Output &out, const Wanted &wanted)
{
    return Collector(out, wanted).Run();
}

} // namespace rsvpctl
