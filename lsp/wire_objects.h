// The objects that several state blocks share, each converted in one place. An encoder writes an object that is part
// of a key.
#ifndef LSP_WIRE_OBJECTS_H
#define LSP_WIRE_OBJECTS_H

#include "channel/wire.h"
#include "rsvp_mor/lsp.h"

namespace rsvp_mor {

// Sizes on the wire.
enum ObjectSize : uint16_t {
    SESSION_SIZE = 12,
    HOP_SIZE = 8,
    SENDER_SIZE = 8,
    IF_REF_SIZE = 6, // of 8 bytes on the wire
    SENDER_TSPEC_SIZE = 32,
    FLOW_SPEC_SIZE = 44,
    ADSPEC_SIZE = 160,
    LABEL_REQUEST_SIZE = 16,
    SESSION_ATTR_SIZE = 20,
};

void DecodeSession(const Bytes<SESSION_SIZE> &value, RSVP_MOR_Session &session);
void DecodeHop(const Bytes<HOP_SIZE> &value, RSVP_MOR_Hop &hop);
void DecodeSender(const Bytes<SENDER_SIZE> &value, RSVP_MOR_Sender &sender);
void DecodeIfRef(const Bytes<IF_REF_SIZE> &value, RSVP_MOR_IfRef &ifRef);
void DecodeSenderTspec(const Bytes<SENDER_TSPEC_SIZE> &value, RSVP_MOR_SenderTspec &tspec);
void DecodeFlowSpec(const Bytes<FLOW_SPEC_SIZE> &value, RSVP_MOR_FlowSpec &flowSpec);
void DecodeAdspec(const Bytes<ADSPEC_SIZE> &value, RSVP_MOR_Adspec &adspec);
void DecodeLabelRequest(const Bytes<LABEL_REQUEST_SIZE> &value, RSVP_MOR_LabelRequest &labelRequest);
void DecodeSessionAttr(const Bytes<SESSION_ATTR_SIZE> &value, RSVP_MOR_SessionAttr &sessionAttr);

void EncodeSession(Bytes<SESSION_SIZE> &value, const RSVP_MOR_Session &session);
void EncodeHop(Bytes<HOP_SIZE> &value, const RSVP_MOR_Hop &hop);
void EncodeSender(Bytes<SENDER_SIZE> &value, const RSVP_MOR_Sender &sender);

} // namespace rsvp_mor

#endif
