// What one field of a record, or a part of one, means to the daemon: a name, and the form that its value has for
// people and for programs.
#ifndef MANAGER_DICTIONARY_MEANING_H
#define MANAGER_DICTIONARY_MEANING_H

#include "manager/record/json.h"

#include <map>
#include <string>
#include <vector>

namespace manager {

enum class Form : uint8_t {
    Number,
    Signed,
    Hex,
    Address,     // IPv4, dotted
    Bytes,       // hex text, in the order in which they travel
    Bool,        // 0 is false, everything else true
    Bits,        // a name for each bit that is set
    Enumeration, // a word for each number
    Single,      // an IEEE single, or the bits of one
    Rate,        // a single in bytes a second
    Text,        // characters up to the first zero
};

/** The name by which a dictionary asks for a form. */
const char *NameOf(Form form);

struct Meaning {
    std::string name;
    std::string field; // where it is, from the record: "tunnelWord0", "settingBytes[2]"
    Form form = Form::Number;
    std::map<uint64_t, std::string> words; // of an enumeration by its number, of bits by the number of the bit
    std::string unit;                      // empty for what has none
    bool counter = false;                  // it only grows
    std::string mib;                       // the object of a standard MIB that it is
    size_t mibLine = 0;                    // where the file says so
    std::string setting;                   // the command that sets it
    uint32_t offset = 0;                   // from the start of the record
    uint32_t width = 0;                    // bytes
    FieldKind kind = FieldKind::Number;    // how those bytes lie in the record
};

/** The number at a meaning's place; 0 for bytes and text, and the bits of a single. */
uint64_t NumberOf(const Meaning &meaning, const void *record);

/** The value as people read it, with its unit: "head", "10.0.0.4", "30 s", "1 Mbit/s". */
std::string ValueText(const Meaning &meaning, const void *record);

/** The value as programs read it: a number without its unit, a word, a list of words for bits. Numbers of 64 bits
 * are text, since programs that read numbers as doubles would drop their last digits. */
Json ValueJson(const Meaning &meaning, const void *record);

/** A rate as operators count it, in bits a second: "1 Mbit/s", "-" for none. */
std::string BandwidthText(double bitsPerSecond);

} // namespace manager

#endif
