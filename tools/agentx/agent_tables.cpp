// Made anew for each request: there are few rows, and an age is of the moment.
#include "tools/agentx/agent_tables.h"

namespace agentx {
namespace {

uint32_t Ticks(Clock::duration time)
{
    return static_cast<uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(time).count() / 10);
}

} // namespace

Snapshot AgentScalars(std::span<const Published *const> tables, Clock::duration maxAge, bool isUp)
{
    const auto put = [](Builder &builder, std::string_view object, Cell cell) {
        builder.Put(*kAgentScalars.Find(object), std::move(cell));
    };
    uint32_t done = 0;
    uint32_t failed = 0;
    Published::State latest;
    for (const Published *table : tables) {
        Published::State state = table->Now();
        done += state.readsDone;
        failed += state.readsFailed;
        if (state.readsFailed != 0 && (latest.readsFailed == 0 || state.failed > latest.failed))
            latest = std::move(state);
    }
    Builder builder(kAgentScalars);
    builder.Begin({0});
    put(builder, "rsvpMorAgentUp", TruthOf(isUp));
    put(builder, "rsvpMorAgentMaxAge", Ticks(maxAge));
    put(builder, "rsvpMorAgentReadsDone", done);
    put(builder, "rsvpMorAgentReadsFailed", failed);
    put(builder, "rsvpMorAgentLastError", latest.lastError.substr(0, 255));
    return builder.Finish();
}

Snapshot CacheTable(std::span<const Published *const> tables, Clock::duration maxAge)
{
    const auto put = [](Builder &builder, std::string_view object, Cell cell) {
        builder.Put(*kCacheTable.Find(object), std::move(cell));
    };
    const Clock::time_point now = Clock::now();
    Builder builder(kCacheTable);
    for (uint32_t i = 0; i < tables.size(); ++i) {
        const Published::State state = tables[i]->Now();
        const bool isServed = state.newest != nullptr && now - state.begun <= maxAge;
        builder.Begin({i + 1});
        put(builder, "rsvpMorCacheName", std::string(tables[i]->Table().name));
        put(builder, "rsvpMorCacheRows", static_cast<uint32_t>(isServed ? state.newest->RowCount() : 0));
        if (state.newest != nullptr)
            put(builder, "rsvpMorCacheAge", Ticks(now - state.begun));
        put(builder, "rsvpMorCacheServed", TruthOf(isServed));
        put(builder, "rsvpMorCacheReadsDone", state.readsDone);
        put(builder, "rsvpMorCacheReadsFailed", state.readsFailed);
        put(builder, "rsvpMorCacheLastError", state.lastError.substr(0, 255));
    }
    return builder.Finish();
}

} // namespace agentx
