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
// clang-format on

#define MANAGER_DECLARE(symbol) extern const Table symbol;
MANAGER_TABLES(MANAGER_DECLARE)
#undef MANAGER_DECLARE

// One record each.
extern const Table kGlobalInfo;
extern const Table kDebugSwitches;

/** All tables that are walked. */
std::span<const Table *const> AllTables();

/** The same for the dictionaries that say something of them. */
std::span<const TableShape> AllTableShapes();

} // namespace manager

#endif
