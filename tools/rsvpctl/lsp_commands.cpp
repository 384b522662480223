// `show psb|rsb|phsb|crlsp`: the walks over LSP state, with filters. A row is printed as it comes and released at
// once.
#include "lsp_filters.h"
#include "lsp_views.h"
#include "record_fields.h"
#include "walk.h"

namespace rsvpctl {

// The keys under which the daemon finds the row behind another. Reserved bytes are part of a session and a sender on
// the wire, so they are kept: a walk hands a key back as it came.
struct PsbKey {
    RSVP_MOR_Session session;
    RSVP_MOR_Sender sender;
};
struct RsbKey {
    RSVP_MOR_Session session;
    RSVP_MOR_Hop hop;
    RSVP_MOR_Sender filter;
};
struct PhsbKey {
    RSVP_MOR_Session session;
    RSVP_MOR_Hop hop;
};

DESCRIBE(PsbKey, RECORD(session), RECORD(sender))
DESCRIBE(RsbKey, RECORD(session), RECORD(hop), RECORD(filter))
DESCRIBE(PhsbKey, RECORD(session), RECORD(hop))

namespace {

constexpr Table<RSVP_MOR_ReplyPsb, PsbKey> kPathState{
    .held = true,
    .firstFunction = "RSVP_MOR_GetFirstPsbInfo",
    .first = RSVP_MOR_GetFirstPsbInfo,
    .nextFunction = "RSVP_MOR_GetNextPsbInfo",
    .next = [](int32_t fd, const PsbKey &key,
               RSVP_MOR_ReplyPsb *row) { return RSVP_MOR_GetNextPsbInfo(fd, &key.session, &key.sender, row); },
    .keyOf =
        [](const RSVP_MOR_ReplyPsb &row) {
            return PsbKey{row.session, row.sender};
        },
    .release = RSVP_MOR_FreeReplyPsb,
};

constexpr Table<RSVP_MOR_ReplyRsb, RsbKey> kReservationState{
    .held = true,
    .firstFunction = "RSVP_MOR_GetFirstRsbInfo",
    .first = RSVP_MOR_GetFirstRsbInfo,
    .nextFunction = "RSVP_MOR_GetNextRsbInfo",
    .next =
        [](int32_t fd, const RsbKey &key, RSVP_MOR_ReplyRsb *row) {
            return RSVP_MOR_GetNextRsbInfo(fd, &key.session, &key.hop, &key.filter, row);
        },
    .keyOf =
        [](const RSVP_MOR_ReplyRsb &row) {
            return RsbKey{row.session, row.hop, row.filter};
        },
    .release = RSVP_MOR_FreeReplyRsb,
};

constexpr Table<RSVP_MOR_ReplyPhsb, PhsbKey> kPreviousHopState{
    .held = true,
    .firstFunction = "RSVP_MOR_GetFirstPhsbInfo",
    .first = RSVP_MOR_GetFirstPhsbInfo,
    .nextFunction = "RSVP_MOR_GetNextPhsbInfo",
    .next = [](int32_t fd, const PhsbKey &key,
               RSVP_MOR_ReplyPhsb *row) { return RSVP_MOR_GetNextPhsbInfo(fd, &key.session, &key.hop, row); },
    .keyOf =
        [](const RSVP_MOR_ReplyPhsb &row) {
            return PhsbKey{row.session, row.hop};
        },
    .release = RSVP_MOR_FreeReplyPhsb,
};

constexpr Table<RSVP_MOR_ReplyCrlsp, RSVP_MOR_CrlspKey> kCrlsps{
    .held = true,
    .firstFunction = "RSVP_MOR_GetFirstCrlsp",
    .first = RSVP_MOR_GetFirstCrlsp,
    .nextFunction = "RSVP_MOR_GetNextCrlsp",
    .next = [](int32_t fd, const RSVP_MOR_CrlspKey &key,
               RSVP_MOR_ReplyCrlsp *row) { return RSVP_MOR_GetNextCrlsp(fd, &key, row); },
    .keyOf = [](const RSVP_MOR_ReplyCrlsp &row) { return row.key; },
    .release = RSVP_MOR_FreeReplyCrlsp,
};

struct FilterOptions {
    const CLI::Option *tunnelId;
    const CLI::Option *lspId;
    const CLI::Option *endPoint;
    const CLI::Option *sender;
};

FilterOptions AddFilters(CLI::App &app)
{
    return {AddNumber(app, "--tunnel-id", UINT16_MAX, "Only LSPs of this tunnel"),
            AddNumber(app, "--lsp-id", UINT16_MAX, "Only LSPs with this identifier"),
            AddAddress(app, "--end-point", "Only LSPs to this end point"),
            AddAddress(app, "--sender", "Only LSPs from this sender")};
}

LspFilter FilterOf(const FilterOptions &options)
{
    LspFilter filter;
    if (options.tunnelId->count() != 0)
        filter.tunnelId = NumberValue(options.tunnelId);
    if (options.lspId->count() != 0)
        filter.lspId = NumberValue(options.lspId);
    if (options.endPoint->count() != 0)
        filter.endPoint = AddressValue(options.endPoint);
    if (options.sender->count() != 0)
        filter.sender = AddressValue(options.sender);
    return filter;
}

template <typename Row>
std::string RowText(const Output &out, const LspView<Row> &view, Style style, bool isFirst, const Row &row)
{
    switch (out.IsJson() ? Style::Json : style) {
    case Style::Json:
        return {};
    case Style::Detail:
        return (isFirst ? "" : "\n") + view.detail(row);
    default:
        return (isFirst ? out.Heading(view.header()) : "") + view.brief(row);
    }
}

template <typename Row, typename Key>
Exit ShowLsps(Output &out, const Command &command, const Table<Row, Key> &table, const LspView<Row> &view,
              const LspFilter &filter, Style style, const std::string &after)
{
    Key afterKey{};
    if (!after.empty())
        RequireKey(Describe<Key>(), after, &afterKey);
    out.BeginList(command.name);
    const Session session(table.held);
    if (session.IsMissing())
        return out.EndRows({WalkEnd::Broken, 0, RSVP_MOR_ERR_LIPC, "RSVP_MOR_LIPCOpen", ""});
    uint64_t shown = 0;
    WalkResult result;
    {
        Progress progress;
        uint64_t rows = 0;
        result = Walk(table, session.Fd(), after.empty() ? nullptr : &afterKey, [&](Row &row) {
            bool written = true;
            if (Takes(filter, row)) {
                progress.BeforeRow();
                written = out.ListRow(out.IsJson() ? ToJson(Describe<Row>(), &row) : nlohmann::ordered_json(),
                                      RowText(out, view, style, shown == 0, row));
                ++shown;
            }
            progress.AfterRow(++rows);
            return written;
        });
    }
    result.rows = shown;
    return out.EndRows(result);
}

template <typename Row, typename Key>
void AddLsps(CommandLine &line, CLI::App &show, const std::string &word, const std::string &help,
             const Table<Row, Key> &table, const LspView<Row> &view)
{
    const std::string name = "  rsvpctl " + PathOf(show) + " " + word;
    Command &command = line.Add(
        show, word, help, name + "\n" + name + " --detail --tunnel-id 100\n" + name + " --end-point 10.0.0.4 --json");
    const FilterOptions filters = AddFilters(*command.parser);
    const CLI::Option *after =
        AddKey(*command.parser, "--after", Describe<Key>(), "Begin behind the row with this key");
    command.run = [&command, &line, &table, &view, filters, after](Output &out) {
        return ShowLsps(out, command, table, view, FilterOf(filters), line.ChosenStyle(), TextValue(after));
    };
}

} // namespace

void AddLspCommands(CommandLine &line, CLI::App &show)
{
    AddLsps(line, show, "psb", "Path state: one line an LSP, or all of it with --detail", kPathState, psbView);
    AddLsps(line, show, "rsb", "Reservation state", kReservationState, rsbView);
    AddLsps(line, show, "phsb", "Previous hop state: what is reserved towards the senders", kPreviousHopState,
            phsbView);
    AddLsps(line, show, "crlsp", "CR-LSPs: signalled LSPs with their routes", kCrlsps, crlspView);
}

} // namespace rsvpctl
