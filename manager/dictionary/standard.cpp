// The objects of the standards, one function a record.
#include "manager/dictionary/standard.h"

#include "manager/record/text.h"

#include <bit>
#include <fmt/format.h>
#include <map>
#include <nlohmann/json.hpp>

namespace manager {
namespace {

constexpr uint8_t kBreakBit = 0x80; // of a service's header in an ADSPEC: a hop does not know the service

constexpr const char *kSessionFlags[] = {"local protection", "label recording", "SE style", "bandwidth protection",
                                         "node protection"};

// The general parameters, and the error terms of the guaranteed service.
constexpr AdspecParameter kParameters[] = {
    {4, "hopCount", "count", false}, {6, "pathBandwidth", "B/s", true}, {8, "minPathLatency", "us", false},
    {10, "composedMtu", "B", false}, {133, "Ctot", "B", false},         {134, "Dtot", "us", false},
    {135, "Csum", "B", false},       {136, "Dsum", "us", false},
};

template <typename Record> const Record &As(const void *record)
{
    return *static_cast<const Record *>(record);
}

void NameRoute(const void *record, Json &named)
{
    named["address"] = DottedText(As<RSVP_MOR_RouteEntry>(record).value);
}

void NameHop(const void *record, Json &named)
{
    const auto &hop = As<RSVP_MOR_HopEntry>(record);
    if (hop.kind == RSVP_MOR_HOP_IPV4)
        named["address"] = DottedText(hop.address);
    else if (hop.kind == RSVP_MOR_HOP_LABEL)
        named["label"] = hop.label;
}

void NameLabelRequest(const void *record, Json &named)
{
    const auto &request = As<RSVP_MOR_LabelRequest>(record);
    named["protocol"] = ProtocolText(request.l3pid);
    if (request.kind == RSVP_MOR_LABEL_REQUEST_ATM) {
        named["minVpi"] = VpiOf(request.minVpi);
        named["maxVpi"] = VpiOf(request.maxVpi);
    } else if (request.kind == RSVP_MOR_LABEL_REQUEST_FRAME_RELAY) {
        named["minDlci"] = DlciOf(request.minDlci);
        named["maxDlci"] = DlciOf(request.maxDlci);
    }
}

template <typename Record> void NameFlags(const void *record, Json &named)
{
    named["flags"] = SessionFlagWords(As<Record>(record).flags);
}

template <typename Record> void NameStyle(const void *record, Json &named)
{
    named["style"] = StyleText(As<Record>(record).style);
}

void NameParameter(const void *record, Json &named)
{
    const auto &parameter = As<RSVP_MOR_AdspecParam>(record);
    const auto known = ParameterOf(parameter);
    if (!known)
        return;
    named["parameter"] = known->name;
    named["value"] =
        known->isSingle ? FloatToJson(std::bit_cast<float>(parameter.paramValue)) : Json(parameter.paramValue);
}

void NameAdspec(const void *record, Json &named)
{
    const auto &adspec = As<RSVP_MOR_Adspec>(record);
    named["break"] = (adspec.generalHeader[1] & kBreakBit) != 0;
    named["guaranteedBreak"] = (adspec.guaranteedHeader[1] & kBreakBit) != 0;
    named["loadBreak"] = (adspec.loadHeader[1] & kBreakBit) != 0;
}

using NameRecord = void (*)(const void *record, Json &named);

} // namespace

// The option vector of the STYLE object: two bits of sharing, three of sender selection.
std::string StyleText(uint32_t style)
{
    switch (style & 0xffffff) {
    case 0x0a:
        return "FF";
    case 0x11:
        return "WF";
    case 0x12:
        return "SE";
    default:
        return fmt::format("{:#x}", style);
    }
}

std::vector<std::string> SessionFlagWords(uint8_t flags)
{
    std::vector<std::string> words;
    for (size_t bit = 0; bit < 8; ++bit) {
        if ((flags >> bit & 1) != 0)
            words.push_back(bit < std::size(kSessionFlags) ? kSessionFlags[bit] : fmt::format("{:#04x}", 1U << bit));
    }
    return words;
}

std::string LabelText(uint32_t label)
{
    switch (label) {
    case 0:
        return "0 (explicit null)";
    case 3:
        return "3 (implicit null)";
    default:
        return fmt::format("{}", label);
    }
}

std::string ProtocolText(uint16_t l3pid)
{
    return l3pid == 0x0800 ? "IPv4" : fmt::format("{:#06x}", l3pid);
}

std::span<const AdspecParameter> KnownParameters()
{
    return kParameters;
}

std::optional<AdspecParameter> ParameterOf(const RSVP_MOR_AdspecParam &parameter)
{
    for (const AdspecParameter &known : kParameters) {
        if (known.number == parameter.paramHeader[0])
            return known;
    }
    return std::nullopt;
}

void AddStandardNames(const RecordDescription &description, const void *record, Json &named)
{
    static const std::map<const RecordDescription *, NameRecord> known{
        {&Describe<RSVP_MOR_RouteEntry>(), NameRoute},
        {&Describe<RSVP_MOR_HopEntry>(), NameHop},
        {&Describe<RSVP_MOR_LabelRequest>(), NameLabelRequest},
        {&Describe<RSVP_MOR_SessionAttrAffinity>(), NameFlags<RSVP_MOR_SessionAttrAffinity>},
        {&Describe<RSVP_MOR_SessionAttrShort>(), NameFlags<RSVP_MOR_SessionAttrShort>},
        {&Describe<RSVP_MOR_ReplyRsb>(), NameStyle<RSVP_MOR_ReplyRsb>},
        {&Describe<RSVP_MOR_ReplyPhsb>(), NameStyle<RSVP_MOR_ReplyPhsb>},
        {&Describe<RSVP_MOR_AdspecParam>(), NameParameter},
        {&Describe<RSVP_MOR_Adspec>(), NameAdspec},
    };
    if (const auto found = known.find(&description); found != known.end())
        found->second(record, named);
}

} // namespace manager
