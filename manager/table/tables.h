// Every table of the daemon, and the records that stand alone.
#ifndef MANAGER_TABLE_TABLES_H
#define MANAGER_TABLE_TABLES_H

#include "manager/table/table.h"

namespace manager {

extern const Table kInterfaces;
extern const Table kInterfaceConfig;
extern const Table kNeighbours;
extern const Table kAuthentication;
extern const Table kResources;
extern const Table kTunnels;
extern const Table kIngressTunnels; // the tunnels that begin here
extern const Table kFrrFacility;
extern const Table kFrrGeneral;
extern const Table kComputedHops;
extern const Table kActualHops;
extern const Table kExtendedHops;
extern const Table kPathState;
extern const Table kReservationState;
extern const Table kPreviousHopState;
extern const Table kCrLsps;

// One record each.
extern const Table kGlobalInfo;
extern const Table kDebugSwitches;

// Point-to-multipoint state: a walk needs a dictionary that says what the key of the next block is.
extern const Table kP2mpPathState;
extern const Table kP2mpReservationState;
extern const Table kP2mpCrLsps;

/** All tables that are walked. */
std::span<const Table *const> AllTables();

/** The same for the dictionaries that say something of them. */
std::span<const TableShape> AllTableShapes();

} // namespace manager

#endif
