// The only file that knows Net-SNMP. One handler answers for all tables: it finds the row by binary search in a
// sorted copy, so that GETNEXT costs the same in the first row and in the last.
#include "tools/agentx/agent.h"

#include "tools/agentx/agent_tables.h"
#include "tools/agentx/log.h"
#include "tools/agentx/workers.h"

#include <net-snmp/net-snmp-config.h>

#include <net-snmp/net-snmp-includes.h>

#include <net-snmp/agent/net-snmp-agent-includes.h>

#include <net-snmp/agent/agent_callbacks.h>

#include <net-snmp/library/large_fd_set.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace agentx {
namespace {

// How often the agent asks whether the master lives, and tries to reach one that is gone.
constexpr int kPingSeconds = 1;

/** Wakes the loop out of its wait, from a signal handler or from another thread. */
class Alarm {
public:
    Alarm() : fd_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
    {
        if (fd_ < 0)
            throw std::system_error(errno, std::generic_category(), "there is no descriptor left");
    }
    ~Alarm() { close(fd_); }
    Alarm(const Alarm &) = delete;
    Alarm &operator=(const Alarm &) = delete;

    int Fd() const { return fd_; }

    void Ring() const
    {
        const int error = errno;
        const uint64_t one = 1;
        (void)!write(fd_, &one, sizeof(one)); // a full count rings as well
        errno = error;
    }

    void Silence() const
    {
        uint64_t count = 0;
        (void)!read(fd_, &count, sizeof(count));
    }

private:
    int fd_;
};

volatile std::sig_atomic_t toldToEnd = 0;
const Alarm *ofSignals = nullptr;

void OnSignal(int)
{
    toldToEnd = 1;
    ofSignals->Ring();
}

using Newest = std::function<std::shared_ptr<const Snapshot>()>;

/** What a handler answers from. */
struct Served {
    const MibTable &table;
    Newest newest;
    Setter *setter = nullptr; // where something can be set
};

using Numbers = std::span<const oid>;

Numbers NameOf(const netsnmp_request_info &request)
{
    return {request.requestvb->name, request.requestvb->name_length};
}

bool BeginsWith(Numbers name, std::span<const uint32_t> entry)
{
    return name.size() >= entry.size() && std::equal(entry.begin(), entry.end(), name.begin());
}

u_char TypeOf(Syntax syntax)
{
    switch (syntax) {
    case Syntax::Unsigned:
    case Syntax::Identifier:
    case Syntax::Gauge:
    case Syntax::Burst:
    case Syntax::KilobitRate:
        return ASN_UNSIGNED;
    case Syntax::Counter:
        return ASN_COUNTER;
    case Syntax::Ticks:
        return ASN_TIMETICKS;
    case Syntax::Bits:
    case Syntax::Text:
    case Syntax::Address:
    case Syntax::LsrId:
    case Syntax::Port:
        return ASN_OCTET_STR;
    case Syntax::ResourceRow:
        return ASN_OBJECT_ID;
    default:
        return ASN_INTEGER;
    }
}

void SetValue(netsnmp_variable_list *variable, const Object &object, const Cell &cell)
{
    const u_char type = TypeOf(object.syntax);
    if (const auto *number = std::get_if<uint32_t>(&cell)) {
        const long value = type == ASN_INTEGER ? long{static_cast<int32_t>(*number)} : static_cast<long>(*number);
        snmp_set_var_typed_value(variable, type, &value, sizeof(value));
    } else if (const auto *octets = std::get_if<std::string>(&cell)) {
        snmp_set_var_typed_value(variable, type, octets->data(), octets->size());
    } else {
        const Oid &row = std::get<Oid>(cell);
        const std::vector<oid> wide(row.begin(), row.end());
        snmp_set_var_typed_value(variable, type, wide.data(), wide.size() * sizeof(oid));
    }
}

/** The object that a name asks for, and the rest of the name. */
struct Asked {
    const Object *object = nullptr;
    Numbers index;
};

Asked ObjectOf(const MibTable &table, Numbers name)
{
    const size_t length = table.entry.size();
    if (!BeginsWith(name, table.entry) || name.size() == length)
        return {};
    const auto found = std::find_if(table.objects.begin(), table.objects.end(),
                                    [&](const Object &one) { return one.number == name[length]; });
    return {found == table.objects.end() ? nullptr : &*found, name.subspan(length + 1)};
}

// Whether there is such a row, and where.
bool FindRow(const Snapshot &snapshot, Numbers index, size_t &row)
{
    row = snapshot.NotBefore(index);
    return row < snapshot.RowCount() &&
           std::equal(index.begin(), index.end(), snapshot.IndexOf(row).begin(), snapshot.IndexOf(row).end());
}

const Cell *FindCell(const MibTable &table, const Snapshot &snapshot, const Asked &asked)
{
    size_t row = 0;
    if (!FindRow(snapshot, asked.index, row))
        return nullptr;
    const size_t wanted = row;
    const Cell *cell = snapshot.Next(static_cast<size_t>(asked.object - table.objects.data()), row);
    return row == wanted ? cell : nullptr;
}

void AnswerGet(const MibTable &table, const Snapshot *snapshot, netsnmp_agent_request_info *info,
               netsnmp_request_info *request)
{
    const Asked asked = ObjectOf(table, NameOf(*request));
    const Cell *cell = asked.object == nullptr || snapshot == nullptr ? nullptr : FindCell(table, *snapshot, asked);
    if (cell != nullptr)
        SetValue(request->requestvb, *asked.object, *cell);
    else
        netsnmp_set_request_error(info, request, asked.object == nullptr ? SNMP_NOSUCHOBJECT : SNMP_NOSUCHINSTANCE);
}

// A request that gets no answer here goes on to what comes behind the table.
void AnswerGetNext(const MibTable &table, const Snapshot &snapshot, netsnmp_request_info *request)
{
    const Numbers name = NameOf(*request);
    const bool isInside = BeginsWith(name, table.entry);
    if (!isInside && std::lexicographical_compare(table.entry.begin(), table.entry.end(), name.begin(), name.end()))
        return;
    const Numbers rest = isInside ? name.subspan(table.entry.size()) : Numbers();
    for (const size_t column : snapshot.Columns()) {
        const Object &object = table.objects[column];
        size_t row = 0;
        if (!rest.empty() && object.number < rest.front())
            continue;
        if (!rest.empty() && object.number == rest.front() && FindRow(snapshot, rest.subspan(1), row) &&
            request->inclusive == 0)
            ++row;
        const Cell *cell = snapshot.Next(column, row);
        if (cell == nullptr)
            continue;
        std::vector<oid> found(table.entry.begin(), table.entry.end());
        found.push_back(object.number);
        found.insert(found.end(), snapshot.IndexOf(row).begin(), snapshot.IndexOf(row).end());
        snmp_set_var_objid(request->requestvb, found.data(), found.size());
        SetValue(request->requestvb, object, *cell);
        return;
    }
}

// ---- Sets ----

constexpr long kTrue = 1;
constexpr long kFalse = 2;

bool IsEnabled(const MibTable &table, const Snapshot *snapshot, const Asked &asked)
{
    const Cell *cell = snapshot == nullptr ? nullptr : FindCell(table, *snapshot, asked);
    return cell != nullptr && *cell == Cell(uint32_t{kTrue});
}

// The first phase: whether the set is possible, without touching anything. An interface on which RSVP is off may have
// no row with the daemon: switching it on makes one.
int SetError(const MibTable &table, const Snapshot *snapshot, const netsnmp_request_info &request)
{
    const Asked asked = ObjectOf(table, NameOf(request));
    if (asked.object == nullptr || !asked.object->mayBeSet)
        return SNMP_ERR_NOTWRITABLE;
    if (request.requestvb->type != ASN_INTEGER)
        return SNMP_ERR_WRONGTYPE;
    const long wanted = *request.requestvb->val.integer;
    if (wanted != kTrue && wanted != kFalse)
        return SNMP_ERR_WRONGVALUE;
    const bool isIndex = asked.index.size() == 1 && asked.index.front() != 0 && asked.index.front() <= kMostInteger;
    if (!isIndex || (wanted == kFalse && (snapshot == nullptr || FindCell(table, *snapshot, asked) == nullptr)))
        return SNMP_ERR_NOCREATION;
    return SNMP_ERR_NOERROR;
}

/** What a set changes, and what an undo changes back. */
struct SetNote {
    bool wasEnabled;
};
constexpr const char *kSetNote = "what was set before";

void NoteFormerValue(bool wasEnabled, netsnmp_request_info *request)
{
    auto *note = static_cast<SetNote *>(std::malloc(sizeof(SetNote))); // Net-SNMP frees it
    if (note == nullptr)
        return;
    note->wasEnabled = wasEnabled;
    netsnmp_request_add_list_data(request, netsnmp_create_data_list(kSetNote, note, std::free));
}

// The daemon's answer comes later, through the setter: until then the requests are delegated, and the loop goes on.
void Delegate(const Served &served, bool isUndo, netsnmp_mib_handler *handler,
              netsnmp_handler_registration *registration, netsnmp_agent_request_info *info,
              netsnmp_request_info *requests)
{
    std::vector<Change> changes;
    for (netsnmp_request_info *request = requests; request != nullptr; request = request->next) {
        const auto ifIndex = static_cast<uint32_t>(ObjectOf(served.table, NameOf(*request)).index.front());
        const bool wanted = *request->requestvb->val.integer == kTrue;
        const auto *note = static_cast<const SetNote *>(netsnmp_request_get_list_data(request, kSetNote));
        if (!isUndo)
            changes.push_back({ifIndex, wanted});
        else if (note != nullptr && note->wasEnabled != wanted)
            changes.push_back({ifIndex, note->wasEnabled});
        request->delegated = 1;
    }
    served.setter->Ask(netsnmp_create_delegated_cache(handler, registration, info, requests, nullptr),
                       std::move(changes));
}

void EndDelegated(const Setter::Outcome &outcome)
{
    auto *ticket = static_cast<netsnmp_delegated_cache *>(outcome.ticket);
    // Null if the master is gone, and the request with it.
    if (const netsnmp_delegated_cache *cache = netsnmp_handler_check_cache(ticket)) {
        const int error = cache->reqinfo->mode == MODE_SET_UNDO ? SNMP_ERR_UNDOFAILED : SNMP_ERR_COMMITFAILED;
        for (netsnmp_request_info *request = cache->requests; request != nullptr; request = request->next) {
            request->delegated = 0;
            if (!outcome.isDone)
                netsnmp_set_request_error(cache->reqinfo, request, error);
        }
    }
    netsnmp_free_delegated_cache(ticket);
}

// ---- The handler ----

int Answer(netsnmp_mib_handler *handler, netsnmp_handler_registration *registration, netsnmp_agent_request_info *info,
           netsnmp_request_info *requests)
{
    const auto &served = *static_cast<const Served *>(handler->myvoid);
    const std::shared_ptr<const Snapshot> snapshot = served.newest();
    if (info->mode == MODE_SET_ACTION || info->mode == MODE_SET_UNDO) {
        Delegate(served, info->mode == MODE_SET_UNDO, handler, registration, info, requests);
        return SNMP_ERR_NOERROR;
    }
    for (netsnmp_request_info *request = requests; request != nullptr; request = request->next) {
        if (request->processed != 0)
            continue;
        switch (info->mode) {
        case MODE_GET:
            AnswerGet(served.table, snapshot.get(), info, request);
            break;
        case MODE_GETNEXT:
            if (snapshot != nullptr)
                AnswerGetNext(served.table, *snapshot, request);
            break;
        case MODE_SET_RESERVE1:
            if (const int error = SetError(served.table, snapshot.get(), *request); error != SNMP_ERR_NOERROR)
                netsnmp_set_request_error(info, request, error);
            else
                NoteFormerValue(IsEnabled(served.table, snapshot.get(), ObjectOf(served.table, NameOf(*request))),
                                request);
            break;
        default: // the other phases of a set have nothing to do
            break;
        }
    }
    return SNMP_ERR_NOERROR;
}

void Register(Served &served, const std::string &name, std::span<const uint32_t> place)
{
    const std::vector<oid> wide(place.begin(), place.end());
    netsnmp_mib_handler *handler = netsnmp_create_handler(name.c_str(), Answer);
    handler->myvoid = &served;
    netsnmp_handler_registration *registration =
        netsnmp_handler_registration_create(name.c_str(), handler, wide.data(), wide.size(),
                                            served.setter != nullptr ? HANDLER_CAN_RWRITE : HANDLER_CAN_RONLY);
    if (netsnmp_register_handler(registration) != MIB_REGISTERED_OK)
        throw std::runtime_error(name + " cannot be registered");
}

// Scalars one by one, since tables lie between them; of a table all.
void Register(Served &served)
{
    const MibTable &table = served.table;
    const std::string name(table.name);
    if (table.entry.back() == 1 && &table != &kFrrScalars && &table != &kTunnelScalars && &table != &kAgentScalars) {
        Register(served, name, table.entry.first(table.entry.size() - 1));
        return;
    }
    for (const Object &object : table.objects) {
        Oid scalar(table.entry.begin(), table.entry.end());
        scalar.push_back(object.number);
        Register(served, std::string(object.name), scalar);
    }
}

int OnMaster(int, int minor, void *, void *)
{
    Log(Level::Info, minor == SNMPD_CALLBACK_INDEX_START ? "the master has taken the agent in"
                                                         : "the master is gone; trying to reach one");
    return 0;
}

// Nothing is read from files and nothing is written to any: the command line says all.
void StartNetSnmp(const Options &options)
{
    setenv("MIBS", "", 1);
    netsnmp_ds_set_string(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_PERSISTENT_DIR, "/dev/null");
    const auto set = [](int store, int which) { netsnmp_ds_set_boolean(store, which, 1); };
    set(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_READ_CONFIGS);
    set(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_PERSIST_STATE);
    set(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_ALARM_DONT_USE_SIG);
    set(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_NO_CONNECTION_WARNINGS);
    netsnmp_ds_set_int(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_AGENTX_PING_INTERVAL, kPingSeconds);
    netsnmp_ds_set_string(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_X_SOCKET, options.socket.c_str());
    if (options.syslog)
        snmp_enable_syslog_ident("rsvp-agentx", LOG_DAEMON);
    else
        snmp_enable_stderrlog();
    netsnmp_enable_subagent();
    snmp_register_callback(SNMP_CALLBACK_APPLICATION, SNMPD_CALLBACK_INDEX_START, OnMaster, nullptr);
    snmp_register_callback(SNMP_CALLBACK_APPLICATION, SNMPD_CALLBACK_INDEX_STOP, OnMaster, nullptr);
    init_agent("rsvp-agentx");
}

void Loop(const Alarm &alarm, Setter &setter)
{
    netsnmp_large_fd_set ready;
    netsnmp_large_fd_set_init(&ready, FD_SETSIZE);
    while (toldToEnd == 0) {
        int descriptors = alarm.Fd() + 1;
        int forEver = 1;
        timeval timeout{};
        NETSNMP_LARGE_FD_ZERO(&ready);
        NETSNMP_LARGE_FD_SET(alarm.Fd(), &ready);
        snmp_select_info2(&descriptors, &ready, &timeout, &forEver);
        const int count =
            netsnmp_large_fd_set_select(descriptors, &ready, nullptr, nullptr, forEver != 0 ? nullptr : &timeout);
        if (count < 0 && errno != EINTR)
            throw std::system_error(errno, std::generic_category(), "the agent cannot wait");
        if (count > 0 && NETSNMP_LARGE_FD_ISSET(alarm.Fd(), &ready)) {
            alarm.Silence();
            for (const Setter::Outcome &outcome : setter.TakeOutcomes())
                EndDelegated(outcome);
            NETSNMP_LARGE_FD_CLR(alarm.Fd(), &ready);
        }
        if (count > 0)
            snmp_read2(&ready);
        else if (count == 0)
            snmp_timeout();
        run_alarms();
        netsnmp_check_outstanding_agent_requests();
    }
    netsnmp_large_fd_set_cleanup(&ready);
}

} // namespace

void Serve(const Options &options, const Jobs &jobs)
{
    const Alarm alarm;
    ofSignals = &alarm;
    struct sigaction onSignal {};
    onSignal.sa_handler = OnSignal;
    sigaction(SIGTERM, &onSignal, nullptr);
    sigaction(SIGINT, &onSignal, nullptr);

    manager::Cancel cancel;
    const std::vector<const Published *> tables = jobs.Tables();
    Setter setter(jobs.interfaces, cancel, [&] { alarm.Ring(); });
    const Refresher ofState(jobs.state, options.interval, cancel);
    const Refresher ofOthers(jobs.others, options.interval, cancel);
    // From here on, whatever ends the loop ends the waits of the workers first.
    const struct EndWaits {
        manager::Cancel &cancel;
        ~EndWaits() { cancel.Give(); }
    } endWaits{cancel};

    std::deque<Served> served; // handlers point into it
    for (const Published *table : tables) {
        served.push_back({table->Table(), [=, &options] { return table->NotOlderThan(options.maxAge); }});
        const bool mayBeSet = std::any_of(table->Table().objects.begin(), table->Table().objects.end(),
                                          [](const Object &one) { return one.mayBeSet; });
        served.back().setter = mayBeSet ? &setter : nullptr;
    }
    served.push_back(
        {kAgentScalars,
         [&] { return std::make_shared<const Snapshot>(AgentScalars(tables, options.maxAge, Job::IsDaemonUp())); }});
    served.push_back(
        {kCacheTable, [&] { return std::make_shared<const Snapshot>(CacheTable(tables, options.maxAge)); }});

    StartNetSnmp(options);
    for (Served &one : served)
        Register(one);
    init_snmp("rsvp-agentx");
    Log(Level::Info, "started");
    Loop(alarm, setter);
    Log(Level::Info, "ended by a signal");
}

} // namespace agentx
