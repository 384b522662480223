// A document of figures in one of the two text formats of Prometheus. They differ in how a counter's family is named
// and in how a document ends, and no text is good in both: OpenMetrics is what a server may be given and what is
// specified, the classic format is all that the collector of text files in node_exporter reads.
#ifndef TOOLS_RSVPCTL_METRICS_EXPOSITION_H
#define TOOLS_RSVPCTL_METRICS_EXPOSITION_H

#include <cstdint>
#include <list>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace rsvpctl {

/** "upTime" and "up time" as names are written there: "up_time". */
std::string SnakeCase(std::string_view words);

/** The same for the name of a figure: a word that Prometheus keeps for itself is written together with the next one,
 * or with the one before: "summaryRefresh" -> "summaryrefresh". Alone it is a "value": "sum" -> "sumvalue". */
std::string FigureName(std::string_view words);

/** The name, or the name with a number if it is taken; it is taken then. */
std::string Untaken(const std::string &name, std::set<std::string> &taken);

/** Names and values of a series. The values are UTF-8 and may have any character; an empty one is as good as none. */
using Labels = std::vector<std::pair<std::string, std::string>>;

/** Figures of one name. */
class Family {
public:
    enum class Kind : uint8_t { Gauge, Counter };

    Family(std::string name, Kind kind, std::string help);

    /** Adds a series. No two may have the same labels. */
    void Add(const Labels &labels, double value);
    void Add(double value) { Add({}, value); }

private:
    friend class Exposition;

    struct Series {
        std::string labels; // as the document has them
        std::string value;
    };

    std::string name_; // without what counters have at their end
    Kind kind_;
    std::string help_;
    std::vector<Series> series_;
};

class Exposition {
public:
    enum class Format : uint8_t { OpenMetrics, Classic };

    /** A new family, to be filled at any time. If another one has the name, it gets one of its own. `help` is plain
     * text without quotes and backslashes. */
    Family &Add(const std::string &name, Family::Kind kind, const std::string &help);

    /** The document. A family without a figure is not in it. */
    std::string Text(Format format) const;

private:
    std::set<std::string> names_;
    std::list<Family> families_;
};

} // namespace rsvpctl

#endif
