// Single values of records as JSON, each kind in one form.
#ifndef MANAGER_RECORD_JSON_H
#define MANAGER_RECORD_JSON_H

#include "manager/record/record.h"

#include <nlohmann/json_fwd.hpp>

namespace manager {

using Json = nlohmann::ordered_json;

/** A number with the digits that a float has, or a text: JSON cannot express NaN or an infinity. */
Json FloatToJson(float value);

/** One element of a field that lies at `element`, of any kind that holds no records. A number of 64 bits is a text:
 * programs that read numbers as doubles would drop its last digits. */
Json ScalarToJson(const Field &field, const void *element);

/** A value of a document that holds no others, for people; "-" for null. */
std::string ScalarText(const Json &value);

/** A leaf of a row as text, harmless to a terminal; "-" for a text that is not there. */
std::string LeafText(const Leaf &leaf, const void *row);

/** Whether a text can be written as it is. */
bool IsUtf8(const char *text);

/** The document as text on one line, in ASCII alone: what a user typed or a file holds must neither keep a document
 * from being written nor steer the terminal that shows it. Bytes that are not UTF-8 become the replacement character.
 */
std::string JsonText(const Json &value);

} // namespace manager

#endif
