// Records as JSON, under the names of their fields.
#ifndef MANAGER_RECORD_JSON_H
#define MANAGER_RECORD_JSON_H

#include "manager/record/record.h"

#include <nlohmann/json_fwd.hpp>

namespace manager {

using Json = nlohmann::ordered_json;

/** One element of a number, address, bytes, rate, float, secret or text field that lies at `element`. */
Json ScalarToJson(const Field &field, const void *element);

/** The document as text on one line, in ASCII alone: what a user typed or a file holds must neither keep a document
 * from being written nor steer the terminal that shows it. Bytes that are not UTF-8 become the replacement character.
 */
std::string JsonText(const Json &value);

/** The whole record with its lists. */
Json ToJson(const RecordDescription &description, const void *record);

} // namespace manager

#endif
