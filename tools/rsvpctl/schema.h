// The JSON Schema of everything that the tool prints with --json.
#ifndef RSVPCTL_SCHEMA_H
#define RSVPCTL_SCHEMA_H

#include <nlohmann/json.hpp>

namespace rsvpctl {

/** Made from the descriptions of the records and the list of the shows; the same each time. */
nlohmann::ordered_json JsonSchema();

} // namespace rsvpctl

#endif
