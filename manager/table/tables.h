// Every table of the daemon, and the records that stand alone.
#ifndef MANAGER_TABLE_TABLES_H
#define MANAGER_TABLE_TABLES_H

#include "manager/table/table.h"

namespace manager {

// Every table that is walked. One that is not named here cannot be named anywhere else. A walk of point-to-multipoint
// state needs a dictionary that says what the key of the next block is.
// clang-format off
#define MANAGER_TABLES(X) \
    X(kInterfaces) \
    X(kInterfaceConfig) \
    X(kNeighbours) \
    X(kAuthentication) \
    X(kResources) \
    X(kTunnels) \
    X(kIngressTunnels) /* the tunnels that begin here */ \
    X(kFrrFacility) \
    X(kFrrGeneral) \
    X(kComputedHops) \
    X(kActualHops) \
    X(kExtendedHops) \
    X(kPathState) \
    X(kReservationState) \
    X(kPreviousHopState) \
    X(kCrLsps) \
    X(kP2mpPathState) \
    X(kP2mpReservationState) \
    X(kP2mpCrLsps)

// One record each.
#define MANAGER_SINGLE_RECORDS(X) \
    X(kGlobalInfo) \
    X(kDebugSwitches)
// clang-format on

#define MANAGER_DECLARE(symbol) extern const Table symbol;
MANAGER_TABLES(MANAGER_DECLARE)
MANAGER_SINGLE_RECORDS(MANAGER_DECLARE)
#undef MANAGER_DECLARE

/** All tables that are walked. */
std::span<const Table *const> AllTables();

/** All that is one record and has no key. */
std::span<const Table *const> AllSingleRecords();

/** Tables that are walked, for the dictionaries that say something of them. */
std::span<const TableShape> AllTableShapes();

} // namespace manager

#endif
