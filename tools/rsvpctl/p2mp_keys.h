// Keys of point-to-multipoint reads as users give them: fields on the command line or a JSON file. There is no walk
// that would show which keys there are, so a key that is not whole is refused with the names that lack.
#ifndef RSVPCTL_P2MP_KEYS_H
#define RSVPCTL_P2MP_KEYS_H

#include "arguments.h"

#include <map>
#include <string>
#include <vector>

namespace rsvpctl {

/** The fields of a key, in the words that the user gave. */
using KeyFields = std::map<std::string, std::string, std::less<>>;

/** "name=value" words, with spaces or commas between them; or the values alone, in the order of the record. Throws
 * UsageError. */
KeyFields KeyFromWords(const RecordDescription &description, const std::vector<std::string> &words);

/** A JSON object of names with numbers or texts. Throws UsageError. */
KeyFields KeyFromJson(std::string_view text, const std::string &file);

/** Fills the record. A number may be written as an IPv4 address, since that is what many of them are. Throws
 * UsageError for fields that lack, are unknown, or have a value that does not fit. */
void FillKey(const RecordDescription &description, const KeyFields &fields, void *record);

/** The options of a command that needs such a key. */
struct KeyOptions {
    const RecordDescription *description;
    const CLI::Option *words;
    const CLI::Option *file;
};
KeyOptions AddKeyOptions(CLI::App &app, const RecordDescription &description);

/** The key that the options give; throws UsageError if they give none. */
template <typename Key> Key KeyOf(const KeyOptions &options);

} // namespace rsvpctl

#endif
