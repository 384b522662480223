// Conversion of the shared objects. Most records are the wire's image: they are copied whole and their numbers
// converted in place, so that what is not named stays raw.
#include "lsp/wire_objects.h"

namespace rsvp_mor {

namespace {

// Records that are the wire's image.
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_Session, SESSION_SIZE);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_Session, reserved, 4);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_Session, tunnelId, 6);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_Session, extendedTunnelId, 8);
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_Hop, HOP_SIZE);
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_Sender, SENDER_SIZE);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_Sender, lspId, 6);
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_IfRef, 6);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_IfRef, ifRefNumber, 2);
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_SenderTspec, 32);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_SenderTspec, overallLength, 2);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_SenderTspec, serviceLength, 6);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_SenderTspec, tspecParamLength, 10);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_SenderTspec, tokenRate, 12);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_SenderTspec, minPolicedUnit, 24);
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_FlowSpec, 44);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_FlowSpec, overallLength, 2);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_FlowSpec, serviceLength, 6);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_FlowSpec, tspecParamLength, 10);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_FlowSpec, minPolicedUnit, 24);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_FlowSpec, rspecParamLength, 34);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_FlowSpec, rspecRate, 36);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_FlowSpec, slackTerm, 40);
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_AdspecParam, 8);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_AdspecParam, paramLength, 2);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_AdspecParam, paramValue, 4);
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_Adspec, 160);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_Adspec, msgLength, 2);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_Adspec, generalLength, 6);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_Adspec, hopCount, 8);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_Adspec, guaranteedLead, 40);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_Adspec, guaranteedLength, 46);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_Adspec, guaranteedParams, 48);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_Adspec, guaranteedWord, 80);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_Adspec, guaranteedOverrides, 84);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_Adspec, loadLead, 116);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_Adspec, loadLength, 122);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_Adspec, loadWord, 124);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_Adspec, loadOverrides, 128);
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_LabelRequest, 16);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_LabelRequest, reserved, 4);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_LabelRequest, l3pid, 6);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_LabelRequest, minVpi, 8);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_LabelRequest, maxVci, 14);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_LabelRequest, minDlci, 8);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_LabelRequest, maxDlci, 12);
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_SessionAttr, 20);

template <typename Record> void CopyWholeRaw(const uint8_t *at, Record &record)
{
    memcpy(&record, at, sizeof record);
}

// SENDER_TSPEC and the front of FLOWSPEC are alike, field for field.
template <typename Spec> void ConvertTspecNet(Spec &spec)
{
    ConvertNet(spec.overallLength, spec.serviceLength, spec.tspecParamLength); // the three rates stay raw
    ConvertNet(spec.minPolicedUnit, spec.maxPacketSize);
}

void ConvertParamNet(RSVP_MOR_AdspecParam &param)
{
    ConvertNet(param.paramLength, param.paramValue); // one word, also where the parameter is a float
}

void ConvertParamsNet(RSVP_MOR_AdspecParam (&params)[4])
{
    for (RSVP_MOR_AdspecParam &param : params)
        ConvertParamNet(param);
}

} // namespace

void ConvertSessionNet(RSVP_MOR_Session &session)
{
    ConvertNet(session.tunnelEndpoint, session.tunnelId, session.extendedTunnelId);
}

void DecodeSession(const uint8_t *at, RSVP_MOR_Session &session)
{
    CopyWholeRaw(at, session);
    ConvertSessionNet(session);
}

void DecodeHop(const uint8_t *at, RSVP_MOR_Hop &hop)
{
    LoadNet(at + 0, hop.hopAddress);
    LoadNet(at + 4, hop.logicalIfHandle);
}

void DecodeSender(const uint8_t *at, RSVP_MOR_Sender &sender)
{
    CopyWholeRaw(at, sender);
    ConvertNet(sender.senderAddress, sender.lspId);
}

void DecodeIfRef(const uint8_t *at, RSVP_MOR_IfRef &ifRef)
{
    CopyWholeRaw(at, ifRef); // six of the slot's eight bytes
    ConvertNet(ifRef.ifRefNumber);
}

void DecodeSenderTspec(const uint8_t *at, RSVP_MOR_SenderTspec &tspec)
{
    CopyWholeRaw(at, tspec);
    ConvertTspecNet(tspec);
}

void DecodeFlowSpec(const uint8_t *at, RSVP_MOR_FlowSpec &flowSpec)
{
    CopyWholeRaw(at, flowSpec);
    ConvertTspecNet(flowSpec);
    ConvertNet(flowSpec.rspecParamLength, flowSpec.slackTerm); // the rate stays raw
}

void DecodeAdspec(const uint8_t *at, RSVP_MOR_Adspec &adspec)
{
    CopyWholeRaw(at, adspec);
    ConvertNet(adspec.msgLength, adspec.generalLength);
    ConvertParamNet(adspec.hopCount);
    ConvertParamNet(adspec.pathBandwidth);
    ConvertParamNet(adspec.minPathLatency);
    ConvertParamNet(adspec.composedMtu);
    ConvertNet(adspec.guaranteedLead, adspec.guaranteedLength);
    ConvertParamsNet(adspec.guaranteedParams);
    ConvertNet(adspec.guaranteedWord);
    ConvertParamsNet(adspec.guaranteedOverrides);
    ConvertNet(adspec.loadLead, adspec.loadLength, adspec.loadWord);
    ConvertParamsNet(adspec.loadOverrides);
}

void DecodeLabelRequest(const uint8_t *at, RSVP_MOR_LabelRequest &labelRequest)
{
    CopyWholeRaw(at, labelRequest);
    ConvertNet(labelRequest.reserved, labelRequest.l3pid);
    if (labelRequest.kind == RSVP_MOR_LABEL_REQUEST_ATM)
        ConvertNet(labelRequest.minVpi, labelRequest.minVci, labelRequest.maxVpi, labelRequest.maxVci);
    else if (labelRequest.kind == RSVP_MOR_LABEL_REQUEST_FRAME_RELAY)
        ConvertNet(labelRequest.minDlci, labelRequest.maxDlci);
}

void DecodeSessionAttr(const uint8_t *at, RSVP_MOR_SessionAttr &sessionAttr)
{
    // Field by field: bytes that the form does not name are not written.
    LoadRaw(at + 0, sessionAttr.kind);
    if (sessionAttr.kind == RSVP_MOR_SESSION_ATTR_AFFINITY) {
        RSVP_MOR_SessionAttrAffinity &form = sessionAttr.affinityForm;
        LoadNet(at + 4, form.excludeAny);
        LoadNet(at + 8, form.includeAny);
        LoadNet(at + 12, form.includeAll);
        LoadRaw(at + 16, form.setupPriority);
        LoadRaw(at + 17, form.holdingPriority);
        LoadRaw(at + 18, form.flags);
    } else {
        RSVP_MOR_SessionAttrShort &form = sessionAttr.shortForm;
        LoadRaw(at + 4, form.setupPriority);
        LoadRaw(at + 5, form.holdingPriority);
        LoadRaw(at + 6, form.flags);
    }
}

void EncodeSession(uint8_t *at, const RSVP_MOR_Session &session)
{
    StoreNet32(at + 0, session.tunnelEndpoint);
    StoreRaw(at + 4, session.reserved);
    StoreNet16(at + 6, session.tunnelId);
    StoreNet32(at + 8, session.extendedTunnelId);
}

void EncodeHop(uint8_t *at, const RSVP_MOR_Hop &hop)
{
    StoreNet32(at + 0, hop.hopAddress);
    StoreNet32(at + 4, hop.logicalIfHandle);
}

void EncodeSender(uint8_t *at, const RSVP_MOR_Sender &sender)
{
    StoreNet32(at + 0, sender.senderAddress);
    StoreRaw(at + 4, sender.reserved);
    StoreNet16(at + 6, sender.lspId);
}

} // namespace rsvp_mor
