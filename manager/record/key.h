// Keys of rows as people and programs write them: values in order, names with values, or a JSON object. A refusal
// shows the shape of the key, since nobody knows the fields of every key by heart.
#ifndef MANAGER_RECORD_KEY_H
#define MANAGER_RECORD_KEY_H

#include "manager/record/record.h"
#include "manager/record/text.h"

#include <map>
#include <stdexcept>
#include <string>
#include <string_view>

namespace manager {

/** Text that is not a key of the record; says what is wrong with it. The names in it come from outside, and a byte 0
 * would cut it short. */
struct KeyError : std::runtime_error {
    explicit KeyError(std::string_view text) : std::runtime_error(HarmlessText(text)) {}
};

/** Further names under which the fields of a key may be given: alias to field. */
using KeyAliases = std::map<std::string, std::string, std::less<>>;

/**
 * Reads a key into a record: its fields in order, with commas between them ("5,1,10.0.0.1,10.0.0.9"), or as
 * name=value in any order, or first the one and then the other. A 32-bit number may be written as an IPv4 address and
 * an address as a number; bytes are hex text. Quiet fields have names alone, and are 0 if they are not given. Throws
 * KeyError, and then the record may be half filled.
 */
void ReadKey(const RecordDescription &description, std::string_view text, void *record,
             const KeyAliases &aliases = {});

/** Reads a key from a JSON object of names with numbers or texts, as a document has it: `named`, which repeats what
 * the fields say, is not looked at. Throws KeyError. */
void ReadJsonKey(const RecordDescription &description, std::string_view json, void *record,
                 const KeyAliases &aliases = {});

/** The key as ReadKey takes it. */
std::string KeyText(const RecordDescription &description, const void *record);

/** "tunnelIndex,tunnelInstance" for help texts and refusals, from the names of the fields. */
std::string KeyShape(const RecordDescription &description);

} // namespace manager

#endif
