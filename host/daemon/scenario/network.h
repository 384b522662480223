// Makes up a network and shows it as one of its routers sees it: interfaces and neighbours, tunnels that begin here,
// pass through or end here, bypasses that protect them, point-to-multipoint LSPs. The rows of all tables belong
// together by their keys, so that programs that join them have something to join.
#ifndef HOST_DAEMON_SCENARIO_NETWORK_H
#define HOST_DAEMON_SCENARIO_NETWORK_H

#include "host/daemon/device/device.h"

#include <array>

namespace rsvpsimd {

// The same plan gives the same network on every machine.
struct NetworkPlan {
    uint64_t routers = 20;
    uint64_t tunnels = 100;
    uint64_t p2mp = 5;
    uint64_t seed = 1;
};

// The numbers of a plan, by the names that people use.
struct NetworkNumber {
    std::string_view name;
    std::string_view help;
    uint64_t NetworkPlan::*member;
    uint64_t least = 0;
    uint64_t most = 0;
};
inline constexpr std::array kNetworkNumbers{
    NetworkNumber{"routers", "routers of the network, this one included", &NetworkPlan::routers, 2, 200},
    NetworkNumber{"tunnels", "tunnels that this router has a part in", &NetworkPlan::tunnels, 0, 10'000},
    NetworkNumber{"p2mp", "point-to-multipoint LSPs that begin here", &NetworkPlan::p2mp, 0, 500},
    NetworkNumber{"seed", "another number gives another network", &NetworkPlan::seed, 0, 0x7FFFFFFFFFFFFFFF},
};

using Counts = std::map<std::string, uint32_t, std::less<>>;

// Hands out the rows, and returns the plain counts that go with them.
using TakeRow = std::function<void(RowKindRef kind, const Block &row)>;
Counts MakeNetwork(const NetworkPlan &plan, const TakeRow &take);

// Puts the network into the device. Throws std::invalid_argument if a row is there already. A count that the device
// was given stays.
void AddNetwork(Device &device, const NetworkPlan &plan);

// The network as the text of a scenario, in pieces.
void PrintNetwork(const NetworkPlan &plan, const std::function<void(const std::string &)> &print);

} // namespace rsvpsimd

#endif
