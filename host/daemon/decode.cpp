// The words are those of the trace. The JSON has more: every field of a value under its name in the tables, those
// that are 0 as well, and of a frame that a correct reader refuses whatever can be made out.
#include "host/daemon/decode.h"

#include "host/daemon/trace.h"
#include "host/daemon/wire/record.h"

#include <cmath>
#include <cstdlib>
#include <ctime>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace rsvpsimd {

namespace {

using Json = nlohmann::ordered_json;

std::string TimeText(uint64_t nanoseconds)
{
    constexpr uint64_t kPerSecond = 1000000000;
    const auto seconds = static_cast<time_t>(nanoseconds / kPerSecond);
    tm utc{};
    gmtime_r(&seconds, &utc);
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:09}Z", utc.tm_year + 1900, utc.tm_mon + 1, utc.tm_mday,
                       utc.tm_hour, utc.tm_min, utc.tm_sec, nanoseconds % kPerSecond);
}

std::string HexText(ByteView bytes)
{
    return fmt::format("{:02x}", fmt::join(bytes, ""));
}

// A number of 64 bits is text, since programs that read numbers as doubles would drop its last digits.
Json ElementJson(ByteView value, const Field &field)
{
    const std::string words = ShowField(value, field);
    if (field.secret || field.order == Order::Address)
        return words;
    if (field.order == Order::Float || field.order == Order::Rate) {
        const double number = std::strtod(words.c_str(), nullptr);
        return std::isfinite(number) ? Json(number) : Json(words);
    }
    if (field.width == 8 || (field.order == Order::Raw && field.width > 1))
        return words;
    return LoadNet(value.subspan(field.offset, field.width));
}

void AddField(Json &fields, const std::string &name, ByteView value, const Field &field)
{
    if (!field.inside.empty()) {
        for (const Field &inner : field.inside)
            AddField(fields, name + "." + inner.name, value, inner);
        return;
    }
    Field element = field;
    element.count = 1;
    if (field.count == 1) {
        fields[name] = ElementJson(value, element);
        return;
    }
    Json &elements = fields[name] = Json::array();
    for (size_t i = 0; i < field.count; ++i) {
        elements.push_back(ElementJson(value, element));
        element.offset += element.width;
    }
}

Json ValueJson(const Layout &layout, ByteView value)
{
    Json fields = Json::object();
    const KindLookup kinds = KindsOf(layout, value);
    for (const Field &field : layout.fields)
        if (FindField(layout, field.name, kinds) == &field)
            AddField(fields, field.name, value, field);
    return fields;
}

Json ItemJson(const LooseItem &item)
{
    Json json{{"type", item.type}, {"name", item.kind.name}, {"length", item.length}};
    if (item.HasFields()) {
        json["layout"] = item.kind.layout->Spec().name;
        json["fields"] = ValueJson(**item.kind.layout, item.value);
    } else if (item.IsWhole() && item.kind.list && item.value.size() >= (*item.kind.list)->countWidth) {
        const ListSpec &list = **item.kind.list;
        const Layout &entry = *list.entry;
        json["layout"] = entry.name;
        json["count"] = LoadNet(item.value.first(list.countWidth));
        Json &entries = json["entries"] = Json::array();
        for (ByteView rest = item.value.subspan(list.countWidth); rest.size() >= entry.size;
             rest = rest.subspan(entry.size))
            entries.push_back(ValueJson(entry, rest.first(entry.size)));
    } else if (item.IsWhole() && item.kind.isText) {
        json["text"] = std::string(item.value.begin(), item.value.end());
    } else {
        json["bytes"] = HexText(item.value);
    }
    return json;
}

std::string InJson(uint64_t number, const CapturedPacket &packet)
{
    const CapturedFrame &frame = packet.frame;
    const LooseFrame loose = ReadLoosely(frame);
    Json json{
        {"packet", number},       {"time", TimeText(packet.time)}, {"direction", frame.isReply ? "reply" : "request"},
        {"client", frame.client}, {"process", frame.process},      {"exchange", frame.exchange},
        {"length", frame.length}, {"masked", frame.isMasked}};
    if (loose.header) {
        json["class"] = loose.header->msgClass;
        json["className"] = ClassName(loose.header->msgClass);
        json["op"] = loose.header->op;
        json["opName"] = OpName(loose.header->op);
        json["bodyLength"] = loose.bodyLength;
        json["status"] = loose.header->status;
        Json &items = json["items"] = Json::array();
        for (const LooseItem &item : loose.items)
            items.push_back(ItemJson(item));
    }
    if (!loose.problem.empty())
        json["problem"] = loose.problem;
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string InWords(const CapturedPacket &packet)
{
    const CapturedFrame &frame = packet.frame;
    return fmt::format("{} {}", TimeText(packet.time),
                       frame.isReply ? DescribeReply(frame.client, frame.asked, frame.bytes)
                                     : DescribeRequest(frame.client, frame.bytes));
}

} // namespace

void Decode(std::istream &capture, DecodeForm form, const std::function<void(const std::string &line)> &print)
{
    CaptureReader reader(capture);
    for (uint64_t number = 1; const auto packet = reader.Next(); ++number)
        print(form == DecodeForm::Json ? InJson(number, *packet) : InWords(*packet));
}

} // namespace rsvpsimd
