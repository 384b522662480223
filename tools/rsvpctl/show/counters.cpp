// All or none: a zero in place of a counter that could not be read would be taken for the truth.
#include "tools/rsvpctl/show/counters.h"

#include "manager/table/counts.h"

#include <nlohmann/json.hpp>

namespace rsvpctl {

Exit ShowCounters(Output &out, const std::string &operation)
{
    manager::Json record;
    for (const manager::Count &counter : manager::AllCounts()) {
        uint32_t count = 0;
        const uint32_t status = counter.read(&count);
        if (status != RSVP_MOR_OK)
            return out.Failed({operation, counter.function, "", status});
        record[counter.name] = count;
    }
    return out.Record(operation, record);
}

} // namespace rsvpctl
