// One line a table, with the objects that have a value in some row below it.
#include "tools/agentx/check.h"

#include <cstdio>
#include <fmt/format.h>
#include <fmt/ranges.h>

namespace agentx {

int Check(const Jobs &jobs)
{
    for (const auto *group : {&jobs.state, &jobs.others}) {
        for (const auto &job : *group)
            job->Run();
    }
    bool isWhole = true;
    for (const Published *table : jobs.Tables()) {
        const Published::State state = table->Now();
        const MibTable &mib = table->Table();
        if (state.newest == nullptr) {
            isWhole = false;
            fmt::print("{} ({}): {}\n", mib.name, fmt::join(mib.entry, "."), state.lastError);
            continue;
        }
        std::vector<std::string_view> names;
        for (const size_t column : state.newest->Columns())
            names.push_back(mib.objects[column].name);
        fmt::print("{} ({}): rows {}, objects {} of {}\n  {}\n", mib.name, fmt::join(mib.entry, "."),
                   state.newest->RowCount(), names.size(), mib.objects.size(), fmt::join(names, " "));
    }
    return std::fflush(stdout) == 0 && isWhole ? 0 : 1;
}

} // namespace agentx
