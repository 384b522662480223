// What is read from the daemon, and which tables come of it: one job a group of tables that must fit together.
#ifndef TOOLS_AGENTX_READS_H
#define TOOLS_AGENTX_READS_H

#include "manager/table/table.h"
#include "tools/agentx/mapping.h"
#include "tools/agentx/published.h"

#include <atomic>
#include <functional>

namespace agentx {

/** Walks a table of the daemon from end to end. Throws ReadError if anything breaks the walk. */
void ReadAll(const manager::Table &table, const manager::Dictionary &dictionary,
             const std::function<void(const void *)> &onRow);

/** The status of a call of the library that is not 0, as a ReadError. */
[[noreturn]] void ThrowStatus(const char *function, uint32_t status);

/** Reads of the daemon that fill one or several tables, all of them or none. */
class Job {
public:
    using Read = std::function<std::vector<Snapshot>()>;

    Job(const std::vector<const MibTable *> &tables, Read read);

    /** Reads once and hands over. Gives a line if reading begins to fail, or goes well again; else an empty text. A
     * job whose read keeps nothing from one time to the next may run in two threads at once: neither waits for the
     * other.
     */
    std::string Run();

    std::span<const std::unique_ptr<Published>> Tables() const { return tables_; }

    /** Whether the daemon answered the last time that anything was asked of it. */
    static bool IsDaemonUp();

private:
    std::vector<std::unique_ptr<Published>> tables_;
    Read read_;
};

/** The jobs of one device: those of state blocks and tunnels, which may be long, and all others. */
struct Jobs {
    std::vector<std::unique_ptr<Job>> state;
    std::vector<std::unique_ptr<Job>> others;
    Job *interfaces = nullptr; // among the others; what is set is read again at once

    std::vector<const Published *> Tables() const;
};

/** All jobs whose tables have a source. The dictionary is checked, see CheckNames, and outlives them. */
Jobs MakeJobs(const manager::Dictionary &dictionary);

/** The job of the sessions, senders and reservations, which leaves the session attributes for that of the tunnels. */
struct TunnelAttributes;
std::unique_ptr<Job> MakeStateJob(const manager::Dictionary &dictionary,
                                  std::shared_ptr<TunnelAttributes> attributes);
std::unique_ptr<Job> MakeTunnelJob(const manager::Dictionary &dictionary,
                                   std::shared_ptr<const TunnelAttributes> attributes);

} // namespace agentx

#endif
