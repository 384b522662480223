// The groups of fields that a CR-LSP record shares with its point-to-multipoint form, and the conversion of rates.
#ifndef LSP_CR_LSP_GROUPS_H
#define LSP_CR_LSP_GROUPS_H

#include "channel/wire.h"
#include "rsvp_mor/lsp.h"

namespace rsvp_mor {

// Sizes on the wire.
enum CrlspGroupSize : uint16_t {
    CRLSP_KEY_SIZE = 20,
    CRLSP_PATH_SIZE = 24,
    CRLSP_TRAFFIC_SIZE = 28,
};

void DecodeCrlspKey(const Bytes<CRLSP_KEY_SIZE> &value, RSVP_MOR_CrlspKey &key);
void DecodeCrlspPath(const Bytes<CRLSP_PATH_SIZE> &value, RSVP_MOR_CrlspPath &path);
void DecodeCrlspTraffic(const Bytes<CRLSP_TRAFFIC_SIZE> &value, RSVP_MOR_CrlspTraffic &traffic);
void EncodeCrlspKey(Bytes<CRLSP_KEY_SIZE> &value, const RSVP_MOR_CrlspKey &key);

// The rate that four bytes of a CR-LSP stand for. They are not a number in network order but an IEEE 754 single,
// least significant byte first, whose whole part is the rate with its bytes reversed.
float DecodeRate(const Bytes<4> &value);

} // namespace rsvp_mor

#endif
