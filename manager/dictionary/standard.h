// What the objects of the standards mean: they need no dictionary, since RFC 2205, RFC 2210, RFC 2215, RFC 3209 and
// RFC 4090 settle it for every daemon.
#ifndef MANAGER_DICTIONARY_STANDARD_H
#define MANAGER_DICTIONARY_STANDARD_H

#include "manager/dictionary/meaning.h"

#include <optional>
#include <span>

namespace manager {

/** "SE" for the option vector of a STYLE object, or its number. */
std::string StyleText(uint32_t style);

/** The flags of a SESSION_ATTRIBUTE that are set, in words; one without a word as its number. */
std::vector<std::string> SessionFlagWords(uint8_t flags);

/** What both forms of a SESSION_ATTRIBUTE have; nothing for a block without the object, whose zeros are no
 * priorities. */
struct SessionAttributes {
    uint8_t setupPriority;
    uint8_t holdingPriority;
    uint8_t flags;
};
std::optional<SessionAttributes> AttributesOf(const RSVP_MOR_SessionAttr &object);

/** "3 (implicit null)": reserved labels are better known by name. */
std::string LabelText(uint32_t label);

/** The protocol of a LABEL_REQUEST: "IPv4", or its number. */
std::string ProtocolText(uint16_t l3pid);

// What a word of a LABEL_REQUEST holds beside reserved bits.
inline constexpr uint16_t kVpiBits = 0x0fff;
inline constexpr uint32_t kDlciBits = 0x7fffff;
constexpr uint16_t VpiOf(uint16_t word)
{
    return word & kVpiBits;
}
constexpr uint32_t DlciOf(uint32_t word)
{
    return word & kDlciBits;
}

/** The parameters of an ADSPEC that a service defines. */
struct AdspecParameter {
    uint8_t number;
    const char *name;
    const char *unit;
    bool isSingle; // its value is the bits of an IEEE single
};
std::span<const AdspecParameter> KnownParameters();

/** A parameter by its number; nothing for a number that no service defines. */
std::optional<AdspecParameter> ParameterOf(const RSVP_MOR_AdspecParam &parameter);

inline constexpr uint32_t kUnknownLatency = 0xffffffff;

/** What a standard says of one value of a record. */
struct StandardMeaning {
    Meaning meaning;
    Condition condition = {};   // where it says it
    uint32_t mask = UINT32_MAX; // the bits that count
    int digits = 0;             // of a number or a bit without a word, which is shown in hexadecimal
};

/** All that the standards say of a record, without the records inside it. */
std::span<const StandardMeaning> StandardMeaningsOf(const RecordDescription &record);

/** The value of a record that the condition holds for. */
Json ValueJson(const StandardMeaning &one, const void *record);

} // namespace manager

#endif
