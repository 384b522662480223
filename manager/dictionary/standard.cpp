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

Json RouteAddress(const void *record)
{
    return DottedText(As<RSVP_MOR_RouteEntry>(record).value);
}

Json HopAddress(const void *record)
{
    const auto &hop = As<RSVP_MOR_HopEntry>(record);
    return hop.kind == RSVP_MOR_HOP_IPV4 ? Json(DottedText(hop.address)) : Json();
}

Json HopLabel(const void *record)
{
    const auto &hop = As<RSVP_MOR_HopEntry>(record);
    return hop.kind == RSVP_MOR_HOP_LABEL ? Json(hop.label) : Json();
}

Json Protocol(const void *record)
{
    return ProtocolText(As<RSVP_MOR_LabelRequest>(record).l3pid);
}

template <uint16_t RSVP_MOR_LabelRequest::*Word> Json Vpi(const void *record)
{
    const auto &request = As<RSVP_MOR_LabelRequest>(record);
    return request.kind == RSVP_MOR_LABEL_REQUEST_ATM ? Json(VpiOf(request.*Word)) : Json();
}

template <uint32_t RSVP_MOR_LabelRequest::*Word> Json Dlci(const void *record)
{
    const auto &request = As<RSVP_MOR_LabelRequest>(record);
    return request.kind == RSVP_MOR_LABEL_REQUEST_FRAME_RELAY ? Json(DlciOf(request.*Word)) : Json();
}

template <typename Record> Json Flags(const void *record)
{
    return SessionFlagWords(As<Record>(record).flags);
}

template <typename Record> Json Style(const void *record)
{
    return StyleText(As<Record>(record).style);
}

Json ParameterName(const void *record)
{
    const auto known = ParameterOf(As<RSVP_MOR_AdspecParam>(record));
    return known ? Json(known->name) : Json();
}

Json ParameterValue(const void *record)
{
    const auto &parameter = As<RSVP_MOR_AdspecParam>(record);
    const auto known = ParameterOf(parameter);
    if (!known)
        return {};
    return known->isSingle ? FloatToJson(std::bit_cast<float>(parameter.paramValue)) : Json(parameter.paramValue);
}

template <const uint8_t (RSVP_MOR_Adspec::*Header)[2]> Json Break(const void *record)
{
    return ((As<RSVP_MOR_Adspec>(record).*Header)[1] & kBreakBit) != 0;
}

constexpr StandardName kRouteNames[] = {{"value", "address", RouteAddress}};
constexpr StandardName kHopNames[] = {{"address", "address", HopAddress}, {"label", "label", HopLabel}};
constexpr StandardName kLabelRequestNames[] = {
    {"l3pid", "protocol", Protocol},
    {"minVpi", "minVpi", Vpi<&RSVP_MOR_LabelRequest::minVpi>},
    {"maxVpi", "maxVpi", Vpi<&RSVP_MOR_LabelRequest::maxVpi>},
    {"minDlci", "minDlci", Dlci<&RSVP_MOR_LabelRequest::minDlci>},
    {"maxDlci", "maxDlci", Dlci<&RSVP_MOR_LabelRequest::maxDlci>},
};
template <typename Record> constexpr StandardName kFlagNames[] = {{"flags", "flags", Flags<Record>}};
template <typename Record> constexpr StandardName kStyleNames[] = {{"style", "style", Style<Record>}};
constexpr StandardName kParameterNames[] = {{"paramHeader", "parameter", ParameterName},
                                            {"paramValue", "value", ParameterValue}};
constexpr StandardName kAdspecNames[] = {
    {"generalHeader", "break", Break<&RSVP_MOR_Adspec::generalHeader>},
    {"guaranteedHeader", "guaranteedBreak", Break<&RSVP_MOR_Adspec::guaranteedHeader>},
    {"loadHeader", "loadBreak", Break<&RSVP_MOR_Adspec::loadHeader>},
};

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

std::optional<SessionAttributes> AttributesOf(const RSVP_MOR_SessionAttr &object)
{
    if (object.kind == 0)
        return std::nullopt;
    const auto of = [](const auto &form) {
        return SessionAttributes{form.setupPriority, form.holdingPriority, form.flags};
    };
    return object.kind == RSVP_MOR_SESSION_ATTR_AFFINITY ? of(object.affinityForm) : of(object.shortForm);
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

std::span<const StandardName> StandardNamesOf(const RecordDescription &description)
{
    static const std::map<const RecordDescription *, std::span<const StandardName>> known{
        {&Describe<RSVP_MOR_RouteEntry>(), kRouteNames},
        {&Describe<RSVP_MOR_HopEntry>(), kHopNames},
        {&Describe<RSVP_MOR_LabelRequest>(), kLabelRequestNames},
        {&Describe<RSVP_MOR_SessionAttrAffinity>(), kFlagNames<RSVP_MOR_SessionAttrAffinity>},
        {&Describe<RSVP_MOR_SessionAttrShort>(), kFlagNames<RSVP_MOR_SessionAttrShort>},
        {&Describe<RSVP_MOR_ReplyRsb>(), kStyleNames<RSVP_MOR_ReplyRsb>},
        {&Describe<RSVP_MOR_ReplyPhsb>(), kStyleNames<RSVP_MOR_ReplyPhsb>},
        {&Describe<RSVP_MOR_AdspecParam>(), kParameterNames},
        {&Describe<RSVP_MOR_Adspec>(), kAdspecNames},
    };
    const auto found = known.find(&description);
    return found == known.end() ? std::span<const StandardName>() : found->second;
}

} // namespace manager
