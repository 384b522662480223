// The lines of a detail view, with the objects of RSVP that several blocks share: hops, flow specifications, adspecs.
#ifndef TOOLS_RSVPCTL_VIEW_DETAIL_LINES_H
#define TOOLS_RSVPCTL_VIEW_DETAIL_LINES_H

#include "manager/record/record.h"

#include <rsvp_mor.h>
#include <span>
#include <string>
#include <string_view>

namespace rsvpctl {

/** A title, then names with their values, continued below the value where one is long. */
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

    /** The hops, one a line, a label after its address; nothing for an empty list. */
    void AddHops(std::string_view name, const RSVP_MOR_HopList &list);
    void AddRoute(std::string_view name, const RSVP_MOR_RouteList &list);

    /** Numbers that have no word of their own, by the names of their fields and without those that are 0. The fields
     * in `shown` appear elsewhere in the view; those of the records in `groups` count as the record's own. */
    void AddOthers(const manager::RecordDescription &description, const void *record,
                   std::span<const std::string_view> shown, std::span<const std::string_view> groups = {});

    const std::string &Text() const { return text_; }

private:
    std::string text_;
};

} // namespace rsvpctl

#endif
