// What users type and how it is read: numbers that must fit their field, IPv4 addresses, keys of table rows, and
// authentication keys, which come from a file or standard input alone. Every refusal names the argument and its range
// and happens while the command line is parsed, before anything is sent.
#ifndef RSVPCTL_ARGUMENTS_H
#define RSVPCTL_ARGUMENTS_H

#include "records.h"

#include <CLI/CLI.hpp>
#include <array>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace rsvpctl {

/** Arguments that cannot be taken; the text says which and why. */
struct UsageError : std::runtime_error {
    explicit UsageError(const std::string &text, std::string itsCommand = {}, std::string itsHint = {})
        : std::runtime_error(text), command(std::move(itsCommand)), hint(std::move(itsHint))
    {
    }
    std::string command; // whose arguments they are, where that is known
    std::string hint;    // where to read on; for people
};

/** A decimal or 0x number; nothing if the text is anything else, or no 64 bits hold it. */
std::optional<uint64_t> ParseNumber(std::string_view text);

/** An IPv4 address in dotted form. */
std::optional<uint32_t> ParseAddress(std::string_view text);

/**
 * Reads a key into a record: its fields in order, with commas between them ("5,1,10.0.0.1,10.0.0.9"), or as
 * name=value in any order. An address may also be a number, and bytes are hex text.
 *
 * @return an empty text, or what is wrong
 */
std::string ParseKey(const RecordDescription &description, std::string_view text, void *record);

/** ParseKey for text that the command line has checked before. Throws UsageError. */
void RequireKey(const RecordDescription &description, std::string_view text, void *record);

/** The key as ParseKey takes it. */
std::string KeyText(const RecordDescription &description, const void *record);

/** "INDEX,INSTANCE" for help texts, from the names of the fields. */
std::string KeyShape(const RecordDescription &description);

/** An option or argument (CLI11's name syntax) that takes a number from 0 to `max`. */
CLI::Option *AddNumber(CLI::App &app, const std::string &names, uint64_t max, const std::string &help);
uint32_t NumberValue(const CLI::Option *option);

/** An option or argument that takes an IPv4 address. */
CLI::Option *AddAddress(CLI::App &app, const std::string &names, const std::string &help);
uint32_t AddressValue(const CLI::Option *option);

/** An option or argument that takes a key of a table. */
CLI::Option *AddKey(CLI::App &app, const std::string &names, const RecordDescription &description,
                    const std::string &help);

/** The option's text, or an empty one if it was not given. */
std::string TextValue(const CLI::Option *option);

/** An authentication key, padded with zeros; wiped with the object. */
class AuthKey {
public:
    AuthKey() = default;
    ~AuthKey();
    AuthKey(const AuthKey &) = delete;
    AuthKey &operator=(const AuthKey &) = delete;

    /** Reads the key from a file, or from standard input for "-". One line end behind a key is not part of it, unless
     * the key has its full length. Throws UsageError. */
    void Read(const std::string &file);
    const uint8_t *Bytes() const { return bytes_.data(); }

private:
    std::array<uint8_t, RSVP_MOR_AUTH_KEY_SIZE> bytes_{};
};

} // namespace rsvpctl

#endif
