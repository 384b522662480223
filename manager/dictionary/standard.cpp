// The objects of the standards, as data: one list a record.
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

using Words = std::map<uint64_t, std::string>;

// The option vector of the STYLE object: two bits of sharing, three of sender selection.
constexpr uint32_t kStyleBits = 0xffffff;

const Words &Styles()
{
    static const Words words{{0x0a, "FF"}, {0x11, "WF"}, {0x12, "SE"}};
    return words;
}

const Words &SessionFlags()
{
    static const Words words = [] {
        Words all;
        for (const char *flag : kSessionFlags)
            all.emplace(all.size(), flag);
        return all;
    }();
    return words;
}

const Words &Protocols()
{
    static const Words words{{0x0800, "IPv4"}};
    return words;
}

// A number that has no word is shown as the bits that it is.
std::string WordOf(const Words &words, uint64_t number, uint64_t bits, int digits)
{
    const auto word = words.find(number);
    return word != words.end() ? word->second
           : digits == 0       ? fmt::format("{:#x}", bits)
                               : fmt::format("{:#0{}x}", bits, digits + 2);
}

std::vector<std::string> WordsOfBits(const Words &words, uint64_t number, int digits)
{
    std::vector<std::string> found;
    for (uint64_t bit = 0; number >> bit != 0; ++bit) {
        if ((number >> bit & 1) != 0)
            found.push_back(WordOf(words, bit, uint64_t{1} << bit, digits));
    }
    return found;
}

constexpr int kFlagDigits = 2;
constexpr int kProtocolDigits = 4;

using StandardMeanings = std::vector<StandardMeaning>;

// The rows of the table below: a name for a member of a record, or for one byte of it.
#define STANDARD(Record, member, name, form)                                                                         \
    Named(name, #member, form, offsetof(Record, member), sizeof(Record::member), FieldKind::Number)
#define STANDARD_BYTE(Record, member, at, name, form)                                                                \
    Named(name, #member "[" #at "]", form, offsetof(Record, member) + (at), 1, FieldKind::Bytes)

StandardMeaning Named(const char *name, const char *field, Form form, size_t offset, size_t width, FieldKind kind)
{
    StandardMeaning one;
    one.meaning.name = name;
    one.meaning.field = field;
    one.meaning.form = form;
    one.meaning.offset = static_cast<uint32_t>(offset);
    one.meaning.width = static_cast<uint32_t>(width);
    one.meaning.kind = kind;
    return one;
}

StandardMeaning If(size_t tagOffset, uint8_t tag, StandardMeaning one)
{
    one.condition = {Condition::Test::Equal, tag, static_cast<uint32_t>(tagOffset)};
    return one;
}

StandardMeaning Masked(uint32_t mask, StandardMeaning one)
{
    one.mask = mask;
    return one;
}

StandardMeaning InWords(const Words &words, int digits, StandardMeaning one)
{
    one.meaning.words = words;
    one.digits = digits;
    return one;
}

StandardMeanings OfParameter()
{
    using Row = RSVP_MOR_AdspecParam;
    StandardMeanings all;
    for (const AdspecParameter &parameter : kParameters) {
        all.push_back(
            If(offsetof(Row, paramHeader), parameter.number,
               InWords({{parameter.number, parameter.name}}, 0,
                       STANDARD_BYTE(RSVP_MOR_AdspecParam, paramHeader, 0, "parameter", Form::Enumeration))));
        all.push_back(If(
            offsetof(Row, paramHeader), parameter.number,
            STANDARD(RSVP_MOR_AdspecParam, paramValue, "value", parameter.isSingle ? Form::Single : Form::Number)));
    }
    return all;
}

template <typename Row> StandardMeanings OfFlags()
{
    return {InWords(SessionFlags(), kFlagDigits, STANDARD(Row, flags, "flags", Form::Bits))};
}

template <typename Row> StandardMeanings OfStyle()
{
    return {Masked(kStyleBits, InWords(Styles(), 0, STANDARD(Row, style, "style", Form::Enumeration)))};
}

StandardMeanings OfHop()
{
    using Row = RSVP_MOR_HopEntry;
    return {If(offsetof(Row, kind), RSVP_MOR_HOP_IPV4, STANDARD(Row, address, "address", Form::Address)),
            If(offsetof(Row, kind), RSVP_MOR_HOP_LABEL, STANDARD(Row, label, "label", Form::Number))};
}

StandardMeanings OfLabelRequest()
{
    using Row = RSVP_MOR_LabelRequest;
    const auto vpi = [](StandardMeaning one) {
        return If(offsetof(Row, kind), RSVP_MOR_LABEL_REQUEST_ATM, Masked(kVpiBits, std::move(one)));
    };
    const auto dlci = [](StandardMeaning one) {
        return If(offsetof(Row, kind), RSVP_MOR_LABEL_REQUEST_FRAME_RELAY, Masked(kDlciBits, std::move(one)));
    };
    return {InWords(Protocols(), kProtocolDigits, STANDARD(Row, l3pid, "protocol", Form::Enumeration)),
            vpi(STANDARD(Row, minVpi, "minVpi", Form::Number)), vpi(STANDARD(Row, maxVpi, "maxVpi", Form::Number)),
            dlci(STANDARD(Row, minDlci, "minDlci", Form::Number)),
            dlci(STANDARD(Row, maxDlci, "maxDlci", Form::Number))};
}

StandardMeanings OfAdspec()
{
    using Row = RSVP_MOR_Adspec;
    return {Masked(kBreakBit, STANDARD_BYTE(Row, generalHeader, 1, "break", Form::Bool)),
            Masked(kBreakBit, STANDARD_BYTE(Row, guaranteedHeader, 1, "guaranteedBreak", Form::Bool)),
            Masked(kBreakBit, STANDARD_BYTE(Row, loadHeader, 1, "loadBreak", Form::Bool))};
}

#undef STANDARD
#undef STANDARD_BYTE

} // namespace

Json ValueJson(const StandardMeaning &one, const void *record)
{
    const uint64_t bits = NumberOf(one.meaning, record);
    const uint64_t number = bits & one.mask;
    switch (one.meaning.form) {
    case Form::Address:
        return DottedText(static_cast<uint32_t>(number));
    case Form::Enumeration:
        return WordOf(one.meaning.words, number, bits, one.digits);
    case Form::Bits:
        return WordsOfBits(one.meaning.words, number, one.digits);
    case Form::Bool:
        return number != 0;
    case Form::Single:
        return FloatToJson(std::bit_cast<float>(static_cast<uint32_t>(number)));
    default:
        return number;
    }
}

std::string StyleText(uint32_t style)
{
    return WordOf(Styles(), style & kStyleBits, style, 0);
}

std::vector<std::string> SessionFlagWords(uint8_t flags)
{
    return WordsOfBits(SessionFlags(), flags, kFlagDigits);
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
    return WordOf(Protocols(), l3pid, l3pid, kProtocolDigits);
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

std::span<const StandardMeaning> StandardMeaningsOf(const RecordDescription &record)
{
    static const std::map<const RecordDescription *, StandardMeanings> known{
        {&Describe<RSVP_MOR_RouteEntry>(),
         {Named("address", "value", Form::Address, offsetof(RSVP_MOR_RouteEntry, value), sizeof(uint32_t),
                FieldKind::Number)}},
        {&Describe<RSVP_MOR_HopEntry>(), OfHop()},
        {&Describe<RSVP_MOR_LabelRequest>(), OfLabelRequest()},
        {&Describe<RSVP_MOR_SessionAttrAffinity>(), OfFlags<RSVP_MOR_SessionAttrAffinity>()},
        {&Describe<RSVP_MOR_SessionAttrShort>(), OfFlags<RSVP_MOR_SessionAttrShort>()},
        {&Describe<RSVP_MOR_ReplyRsb>(), OfStyle<RSVP_MOR_ReplyRsb>()},
        {&Describe<RSVP_MOR_ReplyPhsb>(), OfStyle<RSVP_MOR_ReplyPhsb>()},
        {&Describe<RSVP_MOR_AdspecParam>(), OfParameter()},
        {&Describe<RSVP_MOR_Adspec>(), OfAdspec()},
    };
    const auto found = known.find(&record);
    return found == known.end() ? std::span<const StandardMeaning>() : found->second;
}

} // namespace manager
