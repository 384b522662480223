// What a call of the library did on its session, seen from outside the library. A status alone does not say how far
// an exchange came, and a status that the daemon sent may have the number of one of the library's own.
//
// The library connects, sends and receives by the system's calls of these names. A program that links this file takes
// their place, notes what passes and hands everything on as it is, within the thread's deadline if it has one.
#ifndef MANAGER_EXCHANGE_EXCHANGE_H
#define MANAGER_EXCHANGE_EXCHANGE_H

#include "manager/exchange/deadline.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace manager {

/** The first bytes of every message. */
struct FrameHeader {
    uint8_t messageClass = 0;
    uint8_t operation = 0;
    uint16_t bodyLength = 0;
    uint32_t status = 0;
};
inline constexpr size_t kHeaderSize = 8;

struct Exchange {
    enum class Stage : uint8_t { None, Open, Send, Receive };
    Stage stage = Stage::None;     // the last one that began
    int session = -1;              // its descriptor
    int error = 0;                 // errno, if the stage failed
    GivenUp givenUp = GivenUp::No; // the stage failed since nobody waits any more
    double seconds = 0;            // from the begin of the exchange to the end of the stage
    size_t length = 0;             // of the request
    size_t sent = 0;
    size_t received = 0; // 0 with no error: the daemon closed the session
    FrameHeader request;
    FrameHeader reply; // if at least a header came
};

/** Forgets what calls of this thread did before. */
void ForgetExchange();

/** The last exchange of this thread. */
const Exchange &LastExchange();

/** Is told of every exchange of the program when a stage has ended, in the thread of the call. `message` is what went
 * out or came in, as many bytes as the exchange says; null when a session was opened. */
using ExchangeObserver = void (*)(const Exchange &exchange, const void *message);

/** From now on; null: none any more. */
void ObserveExchanges(ExchangeObserver observer);

/** Why a call gave a status that is not 0. */
enum class Fault : uint8_t {
    Local,     // nothing was sent: the library or the platform refused
    NoSession, // no session could be opened
    NotSent,   // the request did not go out as a whole
    NoAnswer,  // no reply came, or the session was closed
    BadReply,  // the reply is out of format
    Refused,   // the reply is in order and carries this status
};

Fault FaultOf(uint32_t status, const Exchange &exchange);

/** "open", "send", "receive", "reply", "refused"; "local" where nothing was sent. */
const char *NameOf(Fault fault);

/** The fault in words, with times and sizes: what was expected and what came. */
std::string TextOf(Fault fault, const Exchange &exchange);

} // namespace manager

#endif
