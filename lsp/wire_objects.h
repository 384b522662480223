// The objects that stand in more than one state block, each converted in one place. A decoder takes the object's
// first byte on the wire; an encoder puts an object of a key back there.
#pragma once

#include "channel/wire.h"
#include "rsvp_mor/lsp.h"

namespace rsvp_mor {

// Sizes on the wire.
enum ObjectSize : uint16_t {
    SESSION_SIZE = 12,
    HOP_SIZE = 8,
    SENDER_SIZE = 8,
};

void DecodeSession(const uint8_t *at, RSVP_MOR_Session &session);
void DecodeHop(const uint8_t *at, RSVP_MOR_Hop &hop);
void DecodeSender(const uint8_t *at, RSVP_MOR_Sender &sender);
void DecodeIfRef(const uint8_t *at, RSVP_MOR_IfRef &ifRef);
void DecodeSenderTspec(const uint8_t *at, RSVP_MOR_SenderTspec &tspec);
void DecodeFlowSpec(const uint8_t *at, RSVP_MOR_FlowSpec &flowSpec);
void DecodeAdspec(const uint8_t *at, RSVP_MOR_Adspec &adspec);
void DecodeLabelRequest(const uint8_t *at, RSVP_MOR_LabelRequest &labelRequest);
void DecodeSessionAttr(const uint8_t *at, RSVP_MOR_SessionAttr &sessionAttr);

// Converts a session where it lies, in a record that was copied from the wire.
void ConvertSessionNet(RSVP_MOR_Session &session);

void EncodeSession(uint8_t *at, const RSVP_MOR_Session &session);
void EncodeHop(uint8_t *at, const RSVP_MOR_Hop &hop);
void EncodeSender(uint8_t *at, const RSVP_MOR_Sender &sender);

} // namespace rsvp_mor
