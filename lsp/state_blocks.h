// Decoders of whole state blocks: each reads all items of a reply's body into a record, and releases what it built if
// an item fails. Declared for the tests.
#ifndef LSP_STATE_BLOCKS_H
#define LSP_STATE_BLOCKS_H

#include "rsvp_mor/lsp.h"

extern "C" {

uint32_t rsvp_mor_DecodePsb(const uint8_t *body, uint16_t length, RSVP_MOR_ReplyPsb *record);
uint32_t rsvp_mor_DecodeRsb(const uint8_t *body, uint16_t length, RSVP_MOR_ReplyRsb *record);
uint32_t rsvp_mor_DecodePhsb(const uint8_t *body, uint16_t length, RSVP_MOR_ReplyPhsb *record);
uint32_t rsvp_mor_DecodeReplyCrlsp(const uint8_t *body, uint16_t length, RSVP_MOR_ReplyCrlsp *record);
}

#endif
