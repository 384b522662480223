// The lines of a detail view, with the objects of RSVP that several blocks share: hops, flow specifications, adspecs.
// What a view shows in words of its own is noted, so that the rest of the record follows under the names of the
// dictionary and of its fields: nothing that a row holds is left out.
#ifndef TOOLS_RSVPCTL_VIEW_DETAIL_LINES_H
#define TOOLS_RSVPCTL_VIEW_DETAIL_LINES_H

#include "manager/dictionary/standard.h"
#include "tools/rsvpctl/view/record_view.h"

#include <rsvp_mor.h>
#include <span>
#include <string>
#include <string_view>

namespace rsvpctl {

/** Bytes a second as they were signalled, and bits a second, by which bandwidth is sold. */
std::string RateText(float rate);

/** A title, then names with their values, continued below the value where one is long. */
class DetailLines {
public:
    explicit DetailLines(std::string title);

    void Add(std::string_view name, std::string_view value);

    /** A line below the value of the one before. */
    void More(std::string_view value) { Add("", value); }

    void AddSession(const RSVP_MOR_Session &session);
    void AddSession(const RSVP_MOR_P2mpSession &session);
    void AddSender(std::string_view name, const RSVP_MOR_Sender &sender);
    void AddSender(std::string_view name, const RSVP_MOR_P2mpSender &sender);
    void AddHop(std::string_view name, const RSVP_MOR_Hop &hop);
    void AddInterface(const RSVP_MOR_IfRef &reference);
    void AddTspec(const RSVP_MOR_SenderTspec &tspec);
    void AddFlowSpec(const RSVP_MOR_FlowSpec &flowSpec);
    void AddAdspec(const RSVP_MOR_Adspec &adspec);
    void AddAttributes(const std::optional<manager::SessionAttributes> &attributes);
    void AddSessionAttribute(const RSVP_MOR_SessionAttr &attribute);
    void AddLabelRequest(const RSVP_MOR_LabelRequest &request);
    void AddStyle(const uint32_t &style);

    /** The hops, one a line, a label after its address; nothing for an empty list. */
    void AddHops(std::string_view name, const RSVP_MOR_HopList &list) { AddHops(name, HopsIn(Shown(list))); }
    void AddHops(std::string_view name, std::span<const RSVP_MOR_HopEntry> hops);

    /** Notes that the view shows a part of the record, and gives it back. */
    template <typename Part> const Part &Shown(const Part &part)
    {
        shown_.Note(&part, sizeof(part)); // NOLINT(bugprone-sizeof-expression): a part may be a pointer
        return part;
    }

    /** All of the record that was not shown. */
    template <typename Record> void AddOthers(const Record &record, const manager::RecordMeanings &meanings)
    {
        AddFields("Other fields", record, meanings);
    }

    /** The same as `name`, for a record that is a part of what is shown. */
    template <typename Record>
    void AddFields(std::string_view name, const Record &record, const manager::RecordMeanings &meanings)
    {
        AddFields(name, manager::Describe<Record>(), &record, meanings);
    }

    const std::string &Text() const { return text_; }

private:
    void AddFields(std::string_view name, const manager::RecordDescription &description, const void *record,
                   const manager::RecordMeanings &meanings);
    std::string ParametersText(std::span<const RSVP_MOR_AdspecParam> parameters);
    template <typename Spec> void AddBucket(std::string_view name, const Spec &spec);

    std::string text_;
    ShownParts shown_;
};

} // namespace rsvpctl

#endif
