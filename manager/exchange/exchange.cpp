// What an exchange says about the status of its call.
#include "manager/exchange/exchange.h"

#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <rsvp_mor.h>

namespace manager {
namespace {

std::string ErrorText(const Exchange &exchange)
{
    if (exchange.givenUp != GivenUp::No)
        return exchange.givenUp == GivenUp::TimeOver ? "given up, as its time was over"
                                                     : "given up, as it was told to";
    return std::strerror(exchange.error);
}

std::string NoAnswerText(const Exchange &exchange)
{
    if (exchange.error == 0)
        return fmt::format("no answer: the daemon closed the session after {:.3f} s", exchange.seconds);
    if (exchange.error == EAGAIN)
        return fmt::format("no answer within {:.1f} s", exchange.seconds);
    return fmt::format("no answer after {:.3f} s: {}", exchange.seconds, ErrorText(exchange));
}

std::string BadReplyText(const Exchange &exchange)
{
    const FrameHeader &reply = exchange.reply;
    const std::string begin = fmt::format("bad reply after {:.3f} s: ", exchange.seconds);
    if (exchange.received < kHeaderSize)
        return begin +
               fmt::format("expected at least the {} bytes of a header, {} came", kHeaderSize, exchange.received);
    if (exchange.received != kHeaderSize + reply.bodyLength)
        return begin + fmt::format("its header announces {} bytes, {} came", kHeaderSize + reply.bodyLength,
                                   exchange.received);
    return begin +
           fmt::format("a frame in order (class {}, operation {}, status 0), but its {} bytes of items are not "
                       "those of the answer",
                       reply.messageClass, reply.operation, reply.bodyLength);
}

} // namespace

Fault FaultOf(uint32_t status, const Exchange &exchange)
{
    switch (exchange.stage) {
    case Exchange::Stage::None:
        return status == RSVP_MOR_ERR_LIPC ? Fault::NoSession : Fault::Local;
    case Exchange::Stage::Open:
        return exchange.error != 0 ? Fault::NoSession : Fault::Local;
    case Exchange::Stage::Send:
        return Fault::NotSent;
    case Exchange::Stage::Receive:
        break;
    }
    if (exchange.received == 0)
        return Fault::NoAnswer;
    const bool inOrder =
        exchange.received >= kHeaderSize && exchange.received == kHeaderSize + exchange.reply.bodyLength;
    return inOrder && exchange.reply.status == status ? Fault::Refused : Fault::BadReply;
}

const char *NameOf(Fault fault)
{
    switch (fault) {
    case Fault::NoSession:
        return "open";
    case Fault::NotSent:
        return "send";
    case Fault::NoAnswer:
        return "receive";
    case Fault::BadReply:
        return "reply";
    case Fault::Refused:
        return "refused";
    default:
        return "local";
    }
}

std::string TextOf(Fault fault, const Exchange &exchange)
{
    switch (fault) {
    case Fault::NoSession:
        return exchange.error == 0 ? "no session could be opened"
                                   : fmt::format("no session: connecting failed after {:.3f} s: {}", exchange.seconds,
                                                 ErrorText(exchange));
    case Fault::NotSent:
        return fmt::format("not sent: {} of {} bytes went out in {:.3f} s: {}", exchange.sent, exchange.length,
                           exchange.seconds, exchange.error == 0 ? "cut short" : ErrorText(exchange));
    case Fault::NoAnswer:
        return NoAnswerText(exchange);
    case Fault::BadReply:
        return BadReplyText(exchange);
    case Fault::Refused:
        return fmt::format("the daemon answered with this status after {:.3f} s", exchange.seconds);
    default:
        return "nothing was sent";
    }
}

} // namespace manager
