// The JSON Schema of everything that the tool prints with --json.
#ifndef TOOLS_RSVPCTL_SHOW_SCHEMA_H
#define TOOLS_RSVPCTL_SHOW_SCHEMA_H

#include "manager/record/json.h"

namespace rsvpctl {

/** Made from the descriptions of the records and the list of the shows, with the units that the dictionary of this
 * run gives. An open one lets every object have more members than those of today. */
manager::Json JsonSchema(bool isOpen);

} // namespace rsvpctl

#endif
