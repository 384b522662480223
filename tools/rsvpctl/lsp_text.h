// Objects of RSVP in the words that operators know: sessions, hops, styles, flow specifications, adspecs. Every view
// of an LSP is made of these, so that one thing is written in one way everywhere.
#ifndef RSVPCTL_LSP_TEXT_H
#define RSVPCTL_LSP_TEXT_H

#include "records.h"

#include <span>
#include <string>
#include <string_view>

namespace rsvpctl {

/** "10.0.0.1"; "-" for 0, which stands for no neighbour. */
std::string AddressText(uint32_t address);

/** A rate in bytes a second as operators count it: "1 Mbit/s", "-" for none. */
std::string BandwidthText(float bytesPerSecond);

/** "SE" for the number or "18"; the bits are those of the STYLE object. */
std::string StyleText(uint32_t style);

/** "local protection, node protection"; empty for none. */
std::string SessionFlagsText(uint8_t flags);

std::string LabelText(uint32_t label);

/** The lines of a detail view: a title, then names with their values, continued below the value where one is long. */
class DetailLines {
public:
    explicit DetailLines(std::string title);

    void Add(std::string_view name, std::string_view value);

    /** A line below the value of the one before. */
    void More(std::string_view value) { Add("", value); }

    void AddHop(std::string_view name, const RSVP_MOR_Hop &hop);
    void AddInterface(const RSVP_MOR_IfRef &reference);
    void AddTspec(const RSVP_MOR_SenderTspec &tspec);
    void AddFlowSpec(const RSVP_MOR_FlowSpec &flowSpec);
    void AddAdspec(const RSVP_MOR_Adspec &adspec);
    void AddSessionAttribute(const RSVP_MOR_SessionAttr &attribute);
    void AddLabelRequest(const RSVP_MOR_LabelRequest &request);

    /** The hops one a line, a label behind its address; nothing for an empty list. */
    void AddHops(std::string_view name, const RSVP_MOR_HopList &list);
    void AddRoute(std::string_view name, const RSVP_MOR_RouteList &list);

    /** Numbers that have no word of their own, by the names of their fields and without those that are 0. `row` is
     * the record as JSON; the fields in `shown` stand elsewhere in the view. */
    void AddOthers(const nlohmann::ordered_json &row, std::span<const std::string_view> shown);

    const std::string &Text() const { return text_; }

private:
    std::string text_;
};

} // namespace rsvpctl

#endif
