// The field groups of a CR-LSP record, which the point-to-multipoint record shares, and the rate conversion.
#pragma once

#include "channel/wire.h"
#include "rsvp_mor/lsp.h"

namespace rsvp_mor {

// Sizes on the wire.
enum CrlspGroupSize : uint16_t {
    CRLSP_KEY_SIZE = 20,
    CRLSP_PATH_SIZE = 24,
    CRLSP_TRAFFIC_SIZE = 28,
};

void DecodeCrlspKey(const uint8_t *at, RSVP_MOR_CrlspKey &key);
void DecodeCrlspPath(const uint8_t *at, RSVP_MOR_CrlspPath &path);
void DecodeCrlspTraffic(const uint8_t *at, RSVP_MOR_CrlspTraffic &traffic);
void EncodeCrlspKey(uint8_t *at, const RSVP_MOR_CrlspKey &key);

// The rate that four bytes of a CR-LSP stand for. They are not a number in network order: they are a single, least
// significant byte first, whose whole part is the rate with its bytes reversed.
float DecodeRate(const uint8_t *at);

} // namespace rsvp_mor
