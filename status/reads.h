// Decoders and workers behind the status queries, declared for the tests.
#ifndef STATUS_READS_H
#define STATUS_READS_H

#include "rsvp_mor/status.h"

extern "C" {

// Each takes a reply's body and its length.
uint32_t rsvp_mor_DecodeIfInfo(const uint8_t *body, uint16_t bodyLength, RSVP_MOR_IfInfo *info);
uint32_t rsvp_mor_DecodeNbr(const uint8_t *body, uint16_t bodyLength, RSVP_MOR_ReplyNbr *out);
uint32_t rsvp_mor_DecodeAuth(const uint8_t *body, uint16_t bodyLength, RSVP_MOR_ReplyAuth *out);
uint32_t rsvp_mor_DecodeExtArHop(const uint8_t *body, uint16_t bodyLength, RSVP_MOR_ReplyExtArHop *out);

// Each takes the message operation to send.
uint32_t rsvp_mor_QueryIfConfig(uint32_t op, uint32_t ifIndex, RSVP_MOR_IfConfig *config);
uint32_t rsvp_mor_ReadFrrGeneralTable(uint32_t msgOp, const RSVP_MOR_FrrGeneralKey *key,
                                      RSVP_MOR_ReplyFrrGeneral *out);
}

#endif
