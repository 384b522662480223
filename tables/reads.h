// Workers behind the table functions, one for each table; the message operation says which row to read. Declared for
// the tests.
#ifndef TABLES_READS_H
#define TABLES_READS_H

#include "rsvp_mor/tables.h"

extern "C" {

uint32_t rsvp_mor_ReadTunnelTable(uint32_t msgOp, const RSVP_MOR_TunnelKey *key, RSVP_MOR_ReplyTunnel *out);
uint32_t rsvp_mor_ReadCHopTable(uint32_t msgOp, RSVP_MOR_ReplyCHop *record);
uint32_t rsvp_mor_ReadArHopTable(uint32_t msgOp, RSVP_MOR_ReplyArHop *record);
uint32_t rsvp_mor_ReadResourceTable(uint32_t msgOp, RSVP_MOR_ReplyResource *record);
}

#endif
