// The walk of walk.c with the owning wrappers of rsvp_mor.hpp: nothing is released by hand, on any path.
//
//     c++ -std=c++20 walk.cpp $(pkg-config --cflags --libs rsvp_mor) -o walk && ./walk
#include "rsvp_mor.hpp"

#include <cinttypes>
#include <cstdio>
#include <string>

namespace {

// Records hold addresses as numbers in host order.
std::string Dotted(uint32_t address)
{
    char text[sizeof("255.255.255.255")];
    std::snprintf(text, sizeof(text), "%u.%u.%u.%u", address >> 24, address >> 16 & 0xFF, address >> 8 & 0xFF,
                  address & 0xFF);
    return text;
}

void Print(const RSVP_MOR_ReplyPsb &psb)
{
    std::printf("tunnel %u from %s to %s, LSP %u, came over", psb.session.tunnelId,
                Dotted(psb.sender.senderAddress).c_str(), Dotted(psb.session.tunnelEndpoint).c_str(),
                psb.sender.lspId);
    for (const RSVP_MOR_HopEntry &hop : rsvp_mor::Entries(psb.hopList))
        if (hop.kind == RSVP_MOR_HOP_IPV4)
            std::printf(" %s", Dotted(hop.address).c_str());
    std::printf("\n");
}

} // namespace

int main()
{
    const rsvp_mor::Session session;
    if (!session.IsOpen()) {
        std::fprintf(stderr, "walk: no session to the daemon; is the service enabled?\n");
        return 3;
    }
    rsvp_mor::Walk<rsvp_mor::PathStates> walk(session);
    for (const RSVP_MOR_ReplyPsb &psb : walk)
        Print(psb);
    switch (walk.End()) {
    case rsvp_mor::WalkEnd::Complete:
        return 0;
    case rsvp_mor::WalkEnd::Stuck:
        std::fprintf(stderr, "walk: the table does not advance\n");
        return 4;
    default:
        std::fprintf(stderr, "walk: ended early with status 0x%08" PRIx32 "\n", walk.Status());
        return 4;
    }
}
