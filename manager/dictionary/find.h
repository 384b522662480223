// Where the dictionary of this device is: every program looks for it in the same places.
#ifndef MANAGER_DICTIONARY_FIND_H
#define MANAGER_DICTIONARY_FIND_H

#include "manager/dictionary/dictionary.h"

namespace manager {

/** The dictionary of the simulated daemon, as its file has it. */
extern const char *const kSimulatedDaemon;

/** What a user writes in place of a file to have no dictionary. */
inline constexpr std::string_view kNoDictionary = "none";

/** Reads a dictionary from a file. Throws DictionaryError. */
Dictionary ReadDictionary(const std::string &file, std::span<const TableShape> tables);

/**
 * The dictionary of this device: `chosen`, else that of RSVP_DICTIONARY, each a file or "none", else
 * `dictionary.toml` in the host directory, else /etc/rsvp-mor/dictionary.toml, else that of the simulated daemon.
 * Throws DictionaryError.
 */
Dictionary FindDictionary(const std::string &chosen, std::span<const TableShape> tables);

} // namespace manager

#endif
