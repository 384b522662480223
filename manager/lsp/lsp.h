// An LSP as a whole. A daemon keeps what it knows of one in several tables, each with a key of its own; here the
// parts come together by what names an LSP on every node that it passes: its session and its sender (RFC 3209).
#ifndef MANAGER_LSP_LSP_H
#define MANAGER_LSP_LSP_H

#include "manager/dictionary/standard.h"
#include "manager/table/walk.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace manager {

struct LspIdentity {
    uint32_t endPoint = 0;
    uint32_t extendedTunnelId = 0;
    uint32_t sender = 0;
    uint32_t tunnelId = 0;
    uint32_t lspId = 0;

    bool operator==(const LspIdentity &) const = default;
};

/** A route of the path state that the dictionary has a name for. */
struct LspRoute {
    std::string name;
    std::vector<uint32_t> addresses;
};

/** One LSP. What nobody tells is empty. */
struct Lsp {
    LspIdentity identity;
    std::string name;
    std::vector<const Table *> tables; // that hold a part of it

    // In words of the dictionary; a role may also follow from the hops.
    std::string role;
    std::string state;
    std::string protection;
    std::optional<bool> isProtected;
    std::optional<uint64_t> upTime;
    std::optional<uint32_t> interface; // of the CR-LSP
    std::optional<uint32_t> bypassTunnel;
    std::string bypassName;

    std::optional<uint32_t> previousHop; // 0: there is none
    std::optional<uint32_t> nextHop;     // likewise
    std::optional<uint32_t> labelIn;     // that this node asks the previous hop for
    std::optional<uint32_t> labelOut;    // that the next hop asks for
    std::optional<SessionAttributes> attributes;
    std::optional<float> askedRate;    // bytes a second, of the sender
    std::optional<float> reservedRate; // of the reservation
    std::optional<uint32_t> style;

    std::vector<LspRoute> routes;
    std::vector<RSVP_MOR_HopEntry> recordedBefore; // from the sender to here
    std::vector<RSVP_MOR_HopEntry> recordedAfter;  // from here to the end point
    std::vector<RSVP_MOR_HopEntry> routeHops;      // of the CR-LSP

    std::vector<RSVP_MOR_ReplyFrrFacility> facility; // rows that name it as protected
    std::vector<RSVP_MOR_ReplyFrrGeneral> general;   // what it asks of its protection, if it begins here
};

struct Lsps {
    std::vector<Lsp> all; // in the order of the CR-LSPs, then those that only other tables hold
    std::vector<TableEnd> tables;
};

/** The words that begin, carry on and end an LSP, by which roles are asked for. */
inline constexpr std::string_view kHead = "head";
inline constexpr std::string_view kTransit = "transit";
inline constexpr std::string_view kTail = "tail";

/** What a dictionary can tell of LSPs. */
struct LspWords {
    explicit LspWords(const Dictionary &dictionary);

    bool crLsps;     // the key of CR-LSPs, and so the names of LSPs
    bool interface;  // its number
    bool protection; // whether an LSP is protected
    bool up;         // the word of a state
    bool down;       // likewise
    bool tail;       // the word of a role; the other two may follow from the hops
};

/**
 * Reads each table once, on a session of its own, and joins their rows. A table that breaks does not keep the others
 * from being read, unless no session can be had or the time is over; one whose key the dictionary does not name is
 * not read. The time and the memory grow with the rows. `afterRow` gets the number of rows that were read so far.
 */
Lsps ReadLsps(const Dictionary &dictionary, const std::function<void(uint64_t rows)> &afterRow);

} // namespace manager

#endif
