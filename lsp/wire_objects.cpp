// Converts the shared objects. Most records are the wire's image: they are copied whole and their numbers converted
// in place, so that the bytes that no number claims stay raw.
#include "lsp/wire_objects.h"

namespace rsvp_mor {

namespace {

// These records are the wire's image.
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_Session, SESSION_SIZE);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_Session, reserved, 4);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_Session, tunnelId, 6);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_Session, extendedTunnelId, 8);
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_Hop, HOP_SIZE);
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_Sender, SENDER_SIZE);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_Sender, lspId, 6);
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_IfRef, IF_REF_SIZE);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_IfRef, ifRefNumber, 2);
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_SenderTspec, SENDER_TSPEC_SIZE);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_SenderTspec, overallLength, 2);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_SenderTspec, serviceLength, 6);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_SenderTspec, tspecParamLength, 10);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_SenderTspec, tokenRate, 12);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_SenderTspec, minPolicedUnit, 24);
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_FlowSpec, FLOW_SPEC_SIZE);
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
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_Adspec, ADSPEC_SIZE);
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
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_LabelRequest, LABEL_REQUEST_SIZE);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_LabelRequest, reserved, 4);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_LabelRequest, l3pid, 6);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_LabelRequest, minVpi, 8);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_LabelRequest, maxVci, 14);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_LabelRequest, minDlci, 8);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_LabelRequest, maxDlci, 12);
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_SessionAttr, SESSION_ATTR_SIZE);

// SENDER_TSPEC and the front of FLOWSPEC have the same fields.
template <typename Spec> void ConvertTspecNet(Spec &spec)
{
    ConvertNet(spec.overallLength, spec.serviceLength, spec.tspecParamLength); // the three rates stay raw
    ConvertNet(spec.minPolicedUnit, spec.maxPacketSize);
}

void ConvertParamNet(RSVP_MOR_AdspecParam &param)
{
    ConvertNet(param.paramLength, param.paramValue); // the value is a word even if it holds a float
}

void ConvertParamsNet(RSVP_MOR_AdspecParam (&params)[4])
{
    for (RSVP_MOR_AdspecParam &param : params)
        ConvertParamNet(param);
}

} // namespace

void DecodeSession(const Bytes<SESSION_SIZE> &value, RSVP_MOR_Session &session)
{
    CopyWholeRaw(value, session);
    ConvertNet(session.tunnelEndpoint, session.tunnelId, session.extendedTunnelId);
}

void DecodeHop(const Bytes<HOP_SIZE> &value, RSVP_MOR_Hop &hop)
{
    LoadNet<0>(value, hop.hopAddress);
    LoadNet<4>(value, hop.logicalIfHandle);
}

void DecodeSender(const Bytes<SENDER_SIZE> &value, RSVP_MOR_Sender &sender)
{
    CopyWholeRaw(value, sender);
    ConvertNet(sender.senderAddress, sender.lspId);
}

void DecodeIfRef(const Bytes<IF_REF_SIZE> &value, RSVP_MOR_IfRef &ifRef)
{
    CopyWholeRaw(value, ifRef); // the last two of its eight bytes are not read
    ConvertNet(ifRef.ifRefNumber);
}

void DecodeSenderTspec(const Bytes<SENDER_TSPEC_SIZE> &value, RSVP_MOR_SenderTspec &tspec)
{
    CopyWholeRaw(value, tspec);
    ConvertTspecNet(tspec);
}

void DecodeFlowSpec(const Bytes<FLOW_SPEC_SIZE> &value, RSVP_MOR_FlowSpec &flowSpec)
{
    CopyWholeRaw(value, flowSpec);
    ConvertTspecNet(flowSpec);
    ConvertNet(flowSpec.rspecParamLength, flowSpec.slackTerm); // the rate stays raw
}

void DecodeAdspec(const Bytes<ADSPEC_SIZE> &value, RSVP_MOR_Adspec &adspec)
{
    CopyWholeRaw(value, adspec);
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

void DecodeLabelRequest(const Bytes<LABEL_REQUEST_SIZE> &value, RSVP_MOR_LabelRequest &labelRequest)
{
    CopyWholeRaw(value, labelRequest);
    ConvertNet(labelRequest.reserved, labelRequest.l3pid);
    if (labelRequest.kind == RSVP_MOR_LABEL_REQUEST_ATM)
        ConvertNet(labelRequest.minVpi, labelRequest.minVci, labelRequest.maxVpi, labelRequest.maxVci);
    else if (labelRequest.kind == RSVP_MOR_LABEL_REQUEST_FRAME_RELAY)
        ConvertNet(labelRequest.minDlci, labelRequest.maxDlci);
}

void DecodeSessionAttr(const Bytes<SESSION_ATTR_SIZE> &value, RSVP_MOR_SessionAttr &sessionAttr)
{
    // Field by field: bytes that the form does not name are not written.
    LoadRaw<0>(value, sessionAttr.kind);
    if (sessionAttr.kind == RSVP_MOR_SESSION_ATTR_AFFINITY) {
        RSVP_MOR_SessionAttrAffinity &form = sessionAttr.affinityForm;
        LoadNet<4>(value, form.excludeAny);
        LoadNet<8>(value, form.includeAny);
        LoadNet<12>(value, form.includeAll);
        LoadRaw<16>(value, form.setupPriority);
        LoadRaw<17>(value, form.holdingPriority);
        LoadRaw<18>(value, form.flags);
    } else {
        RSVP_MOR_SessionAttrShort &form = sessionAttr.shortForm;
        LoadRaw<4>(value, form.setupPriority);
        LoadRaw<5>(value, form.holdingPriority);
        LoadRaw<6>(value, form.flags);
    }
}

void EncodeSession(Bytes<SESSION_SIZE> &value, const RSVP_MOR_Session &session)
{
    StoreNet<0>(value, session.tunnelEndpoint);
    StoreRaw<4>(value, session.reserved);
    StoreNet<6>(value, session.tunnelId);
    StoreNet<8>(value, session.extendedTunnelId);
}

void EncodeHop(Bytes<HOP_SIZE> &value, const RSVP_MOR_Hop &hop)
{
    StoreNet<0>(value, hop.hopAddress);
    StoreNet<4>(value, hop.logicalIfHandle);
}

void EncodeSender(Bytes<SENDER_SIZE> &value, const RSVP_MOR_Sender &sender)
{
    StoreNet<0>(value, sender.senderAddress);
    StoreRaw<4>(value, sender.reserved);
    StoreNet<6>(value, sender.lspId);
}

} // namespace rsvp_mor
