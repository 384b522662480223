// Checks a request, finds the answer, and applies the faults that were asked for.
#include "host/daemon/daemon.h"

#include "host/daemon/trace.h"

#include <fmt/format.h>

namespace rsvpsimd {

namespace {

// The item that says what a message is about. It comes after the key item, if there is one.
uint16_t SubjectOf(const Message &message)
{
    return message.items.empty() ? uint16_t{0xFFFF} : message.items.back().type;
}

Bytes OneItem(uint16_t type, ByteView value)
{
    Bytes body;
    AppendItem(body, type, value);
    return body;
}

uint32_t CheckValue(const Layout &layout, ByteView value)
{
    if (value.size() != layout.size)
        return kBadLength;
    return GapsAreZero(layout, value) ? kOk : kBadValue;
}

bool Selects(const Selector &selector, const Message &request)
{
    return selector.msgClass.value_or(request.msgClass) == request.msgClass &&
           selector.op.value_or(request.op) == request.op &&
           selector.item.value_or(SubjectOf(request)) == SubjectOf(request);
}

} // namespace

void Daemon::Start(Device device, const Behaviour &behaviour)
{
    device_ = std::move(device);
    faults_.clear();
    refusals_.clear();
    Add(behaviour);
}

void Daemon::Add(const Behaviour &more)
{
    for (const Fault &fault : more.faults)
        Add(fault);
    refusals_.insert(refusals_.end(), more.refusals.begin(), more.refusals.end());
}

std::vector<std::string> Daemon::Happen(const Event &event)
{
    Outcome outcome = Apply(event, device_);
    const auto end = [this](const Fault &fault) {
        return std::erase_if(faults_, [&](const Striking &one) { return one.fault == fault; }) != 0;
    };
    const auto note = [&outcome](std::string_view what) {
        outcome.done += fmt::format("{}{}", outcome.done.empty() ? "" : ", ", what);
    };
    if (event.ends) {
        if (end(*event.ends))
            note("a fault ended");
        else
            outcome.problems.emplace_back("there is no such fault to end");
    }
    if (event.begins) {
        end(*event.begins); // one that is there begins anew, so that an event that repeats adds no more of them
        Add(*event.begins);
        note("a fault began");
    }
    std::string line = fmt::format("event of line {}: {}", event.line.number, outcome.done);
    for (const std::string &problem : outcome.problems)
        line += fmt::format("{}{}", line.ends_with(": ") ? "" : "; ", problem);
    Note(line);
    return std::move(outcome.problems);
}

void Daemon::Note(const std::string &line) const
{
    if (trace_)
        trace_(line);
}

Reply Daemon::Answer(ByteView request, uint64_t client)
{
    Reply reply;
    if (trace_)
        Note(DescribeRequest(client, request));
    const std::optional<Message> message = ReadMessage(request);
    if (!message) {
        // Without a whole header there is nothing to answer.
        if (request.size() < kHeaderSize)
            reply = {.frame = {}, .copies = 0, .close = true};
        else
            reply.frame = BuildFrame(request[0], request[1], kMalformed, {});
        CountIn({}, kMalformed);
    } else {
        const std::vector<Fault> faults = FaultsFor(*message);
        const auto has = [&](FaultKind kind) { return std::ranges::count(faults, kind, &Fault::kind) != 0; };
        const Result result = Handle(*message, {has(FaultKind::Stuck), has(FaultKind::Shifting)});
        CountIn(*message, result.status);
        reply.frame = BuildFrame(message->msgClass, message->op, result.status, result.body);
        for (const Fault &fault : faults)
            Strike(fault, reply);
    }
    if (trace_)
        Note(DescribeReply(client, request, reply));
    return reply;
}

Daemon::Result Daemon::Handle(const Message &request, const Walk &walk)
{
    if (request.status != kOk)
        return {kBadValue};
    for (const Refusal &refusal : refusals_)
        if (Selects(refusal.requests, request))
            return {refusal.status};
    switch (request.msgClass) {
    case kGlobal:
    case kInterface:
    case kPeer:
    case kReset:
        return Carry(request);
    case kShow:
        return Show(request, walk);
    default:
        return {kUnknownClass};
    }
}

Daemon::Result Daemon::Carry(const Message &request)
{
    const std::optional<KeyItem> keyItem = KeyItemOf(request.msgClass);
    if (request.items.size() != (keyItem ? 2U : 1U) || (keyItem && request.items.front().type != keyItem->type))
        return {kBadItems};
    const Item &subject = request.items.back();
    const Command *command = FindCommand(request.msgClass, subject.type);
    if (command == nullptr)
        return {kUnknownItem};
    if (request.op > kHelloTimer || (command->ops >> request.op & 1) == 0)
        return {kUnknownOp};
    if (const auto status = CheckValue(*command->layout, subject.value); status != kOk)
        return {status};
    if (keyItem)
        if (const auto status = CheckValue(*keyItem->layout, request.items.front().value); status != kOk)
            return {status};
    return {device_.Apply(*command, request.op, request.items.front().value, subject.value)};
}

Daemon::Result Daemon::Show(const Message &request, const Walk &walk)
{
    if (request.items.size() != 1)
        return {kBadItems};
    const Item &item = request.items.front();
    if (const RowKind *kind = FindRowKind(item.type))
        return ShowRow(*kind, request, walk);
    const auto counts = AllCounts();
    const auto count = std::ranges::find(counts, item.type, &Count::item);
    if (count == counts.end() && item.type != kGlobalItem && item.type != kDebugItem)
        return {kUnknownItem};
    if (request.op != kGet)
        return {kUnknownOp};
    if (!item.value.empty())
        return {kBadLength};
    if (count != counts.end()) {
        Bytes value;
        AppendNet(value, device_.CountOf(*count), 4);
        return {kOk, OneItem(item.type, value)};
    }
    return {kOk, OneItem(item.type, item.type == kGlobalItem ? device_.Global().View() : device_.Debug().View())};
}

Daemon::Result Daemon::ShowRow(const RowKind &kind, const Message &request, const Walk &walk)
{
    const ByteView key = request.items.front().value;
    const bool ingress = request.op == kGetFirstIngress || request.op == kGetNextIngress;
    if (request.op < kGet || request.op > (kind.hasIngressWalk ? kGetNextIngress : kGetNext))
        return {kUnknownOp};
    const bool first = request.op == kGetFirst || request.op == kGetFirstIngress;
    if (const auto status =
            CheckValue(first && kind.firstKey == FirstKey::Empty ? *LayoutRef("none") : *kind.keyLayout, key);
        status != kOk)
        return {status};
    if (first && kind.firstKey == FirstKey::Zero && !IsZero(key))
        return {kBadValue};
    Table &table = device_.Rows(kind);
    const bool next = !first && request.op != kGet;
    Seek seek = next ? Seek::After : Seek::Exact;
    if (first)
        seek = Seek::First;
    else if (next && walk.stuck && table.Find(Seek::Exact, key, ingress))
        seek = Seek::Exact;
    std::optional<EncodedRow> row = table.Find(seek, key, ingress);
    if (next && walk.shifting && row && table.HasRoomFor(row->key)) {
        table.Remove(row->key);
        row = table.Find(seek, key, ingress);
    }
    if (!row)
        return {kNoSuchRow};
    return {kOk, std::move(row->body)};
}

// Counts the request for the faults that select it, and returns those that strike it.
std::vector<Fault> Daemon::FaultsFor(const Message &request)
{
    std::vector<Fault> faults;
    for (Striking &one : faults_) {
        const Fault &fault = one.fault;
        if (!Selects(fault.requests, request) || (fault.afterRows && RowsBefore(request) < *fault.afterRows))
            continue;
        const uint64_t number = one.selected++;
        if (number >= fault.after && (fault.strikes == 0 || number - fault.after < fault.strikes))
            faults.push_back(fault);
    }
    return faults;
}

// How many rows of its table a get-next has behind it. Other requests have none.
uint64_t Daemon::RowsBefore(const Message &request)
{
    const bool ingress = request.op == kGetNextIngress;
    if (request.msgClass != kShow || request.items.size() != 1 || (request.op != kGetNext && !ingress))
        return 0;
    const Item &item = request.items.front();
    const RowKind *kind = FindRowKind(item.type);
    if (kind == nullptr || item.value.size() != kind->keyLayout->size)
        return 0;
    return device_.Rows(*kind).CountUpTo(item.value, ingress);
}

// statWord1 to statWord4 count commands done, commands refused, reads answered and reads refused (ends of tables
// included). countsA of the first group counts requests by operation, countsB by class.
void Daemon::CountIn(const Message &request, uint32_t status)
{
    Image &global = device_.Global();
    if (request.msgClass == kShow)
        CountUp(
            global.Place(status == kOk ? FieldAt("globalInfo", "statWord3") : FieldAt("globalInfo", "statWord4")));
    else
        CountUp(
            global.Place(status == kOk ? FieldAt("globalInfo", "statWord1") : FieldAt("globalInfo", "statWord2")));
    if (request.op <= kHelloTimer)
        CountUp(global.Place(FieldAt("globalInfo", "counters1.countsA")).subspan(4UL * request.op));
    if (request.msgClass <= kReset)
        CountUp(global.Place(FieldAt("globalInfo", "counters1.countsB")).subspan(4UL * request.msgClass));
}

} // namespace rsvpsimd
