// The numbers that the daemon keeps for itself and gives in calls of their own, beside its tables.
#ifndef MANAGER_TABLE_COUNTS_H
#define MANAGER_TABLE_COUNTS_H

#include <cstdint>
#include <span>

namespace manager {

struct Count {
    const char *name;
    const char *help;
    const char *function;
    uint32_t (*read)(uint32_t *count);
};

std::span<const Count> AllCounts();

} // namespace manager

#endif
