// The document and the messages. JSON is written piece by piece, since a walk of any length must neither wait for its
// end nor grow in memory.
#include "tools/rsvpctl/print/output.h"

#include "manager/dictionary/document.h"
#include "manager/exchange/exchange.h"
#include "manager/record/text.h"
#include "tools/rsvpctl/print/interrupt.h"
#include "tools/rsvpctl/print/names.h"
#include "tools/rsvpctl/print/terminal.h"
#include "tools/rsvpctl/print/time_limit.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <sys/ioctl.h>
#include <unistd.h>

namespace rsvpctl {
namespace {

using manager::CountText, manager::HarmlessText, manager::Json, manager::JsonText, manager::WalkEnd,
    manager::WalkResult;

constexpr size_t kWidthOfMostTerminals = 80;

bool UseColor(Color color, FILE *stream)
{
    if (color != Color::Auto)
        return color == Color::Always;
    const char *off = std::getenv("NO_COLOR");
    return (off == nullptr || *off == '\0') && TakesEscapes(fileno(stream));
}

// Only people have lines that end; what reads a pipe or a file gets all columns.
size_t LineWidth(FILE *stream)
{
    if (isatty(fileno(stream)) != 1)
        return SIZE_MAX;
    const char *wanted = std::getenv("COLUMNS");
    if (const auto columns = manager::ParseNumber(wanted == nullptr ? "" : wanted); columns && *columns > 0)
        return static_cast<size_t>(std::min<uint64_t>(*columns, SIZE_MAX));
    winsize size{};
    const bool known = ioctl(fileno(stream), TIOCGWINSZ, &size) == 0;
    return known && size.ws_col > 0 ? size.ws_col : kWidthOfMostTerminals;
}

const char *EndName(WalkEnd end)
{
    switch (end) {
    case WalkEnd::EndOfTable:
        return "end of table";
    case WalkEnd::Stuck:
        return "stuck";
    case WalkEnd::NoKey:
        return "no key";
    case WalkEnd::Stopped:
        return "limit";
    default:
        return "broken";
    }
}

std::string Advice(const Reason &reason)
{
    return fmt::format("\n  what happened: {}\n  likely cause:  {}\n  what to do:    {}", HarmlessText(reason.what),
                       reason.text.cause, reason.text.remedy);
}

// What ended a walk before its table did.
Reason BreakOf(const WalkResult &result, const manager::Exchange &exchange)
{
    if (result.end == WalkEnd::Stuck)
        return {"verify", fmt::format("{} gave a row that was there before", result.function), StuckText()};
    if (result.end == WalkEnd::NoKey)
        return {"verify", "no dictionary says which fields of a row are the key of the next", NoKeyText()};
    const manager::Fault fault = FaultOf(result.status, exchange);
    StatusText text = Explain(result.status, result.function, exchange);
    // A table that is not all there is one exit status, whatever broke it; a daemon that is not there is another.
    if (result.rows != 0 || fault != manager::Fault::NoSession)
        text.exit = Exit::Exchange;
    return {
        NameOf(fault),
        fmt::format("{} gave {:#010x} {}: {}", result.function, result.status, text.name, TextOf(fault, exchange)),
        text};
}

std::string MemberText(const char *name, const Json &value)
{
    return fmt::format(",\"{}\":{}", name, JsonText(value));
}

std::string EndText(uint32_t status, const char *name, Exit exit)
{
    return MemberText("status", status) + MemberText("statusName", name) +
           MemberText("exitStatus", static_cast<int>(exit)) + "}\n";
}

std::string EndOfEarly(Exit exit)
{
    return EndText(RSVP_MOR_ERR_FAIL, Explain(RSVP_MOR_ERR_FAIL).name, exit);
}

// Whatever a command makes of a call that was given up, its time was over.
Exit OrTimeOver(Exit exit)
{
    const bool givenUp = manager::LastExchange().givenUp == manager::GivenUp::TimeOver;
    return exit != Exit::Done && givenUp ? Exit::TimeOver : exit;
}

} // namespace

Output::Output(Style style, Color color, FILE *document, FILE *messages)
    : style_(style), document_(document), messages_(messages), colorDocument_(UseColor(color, document)),
      colorMessages_(UseColor(color, messages)), lineWidth_(LineWidth(document))
{
}

// What makes a whole document of what is written so far. A document without rows is written at once.
std::string Output::Ending(Exit exit) const
{
    static const std::string interrupted = EndOfEarly(Exit::Interrupted);
    static const std::string timeOver = EndOfEarly(Exit::TimeOver);
    const std::string &end = exit == Exit::TimeOver ? timeOver : interrupted;
    // Made anew for each row that is written, of which it must not be the larger part.
    constexpr const char *kCut = "],\"count\":{},\"complete\":false";
    std::string text;
    if (inList_) {
        text += fmt::format(kCut, rows_);
        if (function_ != nullptr)
            text += fmt::format(",\"end\":\"interrupted\",\"function\":\"{}\"", function_);
        text += end;
    }
    if (inBatch_)
        text += fmt::format(kCut, batchDocuments_) + end;
    return text;
}

std::string Output::EndingWithout(const std::string &operation, Exit exit)
{
    OpenDocument(operation);
    Member("error", exit == Exit::TimeOver ? "the time was over" : "interrupted");
    return std::exchange(text_, {}) + EndOfEarly(exit);
}

void Output::EndWholeWhenEarly(const std::string &operation)
{
    EndDocumentEarly(fileno(document_),
                     {EndingWithout(operation, Exit::Interrupted), EndingWithout(operation, Exit::TimeOver)});
}

bool Output::Flush()
{
    const Waiting waiting("the reader of the output");
    DocumentWrite write;
    if (IsJson())
        write.SetEndings({Ending(Exit::Interrupted), TimeLimit::Holds() ? Ending(Exit::TimeOver) : ""});
    if (writeError_ == 0 && !text_.empty() &&
        (std::fwrite(text_.data(), 1, text_.size(), document_) != text_.size() || std::fflush(document_) != 0))
        writeError_ = errno;
    text_.clear();
    return writeError_ == 0;
}

void Output::Message(const std::string &text)
{
    Write(HarmlessText(text));
}

void Output::Write(const std::string &line)
{
    // If standard error cannot be written, there is nowhere left to say so.
    (void)std::fwrite(line.data(), 1, line.size(), messages_);
    (void)std::fputc('\n', messages_);
}

void Output::Complain(const std::string &text, const std::string &below)
{
    const std::string where = inBatch_ ? fmt::format("{}:{}: ", batchFile_, batchLine_) : "";
    Write(fmt::format("{}rsvpctl: {}{}{}{}", colorMessages_ ? "\x1b[31m" : "", HarmlessText(where),
                      colorMessages_ ? "\x1b[0m" : "", HarmlessText(text), below));
}

Exit Output::Finish(Exit exit)
{
    if (writeError_ == 0 || writeError_ == EPIPE)
        return exit;
    Message(fmt::format("rsvpctl: the output could not be written: {}", std::strerror(writeError_)));
    return Exit::NotWritten;
}

// ---- Documents ----

void Output::OpenDocument(const std::string &operation)
{
    operation_ = operation;
    if (!IsJson())
        return;
    if (inBatch_)
        text_ += fmt::format("{}{{\"line\":{},", batchDocuments_++ == 0 ? "" : ",", batchLine_);
    else
        text_ += fmt::format("{{\"schemaVersion\":{},", kSchemaVersion);
    text_ += fmt::format("\"operation\":{}", JsonText(operation));
}

void Output::Member(const char *name, const Json &value)
{
    text_ += MemberText(name, value);
}

Exit Output::CloseDocument(uint32_t status, Exit exit, const char *name)
{
    exit = OrTimeOver(exit);
    if (inBatch_ && exit > batchExit_) {
        batchExit_ = exit;
        batchStatus_ = status;
    }
    if (IsJson())
        text_ += EndText(status, name == nullptr ? Explain(status).name : name, exit);
    inList_ = false;
    Flush();
    return exit;
}

Exit Output::Document(const std::string &operation, const char *name, const Json &value, const std::string &text,
                      uint32_t status)
{
    OpenDocument(operation);
    if (IsJson())
        Member(name, value);
    else
        text_ += text;
    return CloseDocument(status, Explain(status).exit);
}

Exit Output::Done(const std::string &operation, const std::string &asked)
{
    const std::string text = fmt::format("{}{}{}: done\n", operation, asked.empty() ? "" : " ", asked);
    return Document(operation, "asked", asked, text, RSVP_MOR_OK);
}

Exit Output::Record(const std::string &operation, const Json &record, uint32_t status)
{
    return Record(operation, record, IsJson() ? "" : DetailText(record), status);
}

Exit Output::Record(const std::string &operation, const Json &record, const std::string &text, uint32_t status)
{
    return Document(operation, "record", record, text, status);
}

Exit Output::Record(const std::string &operation, const manager::RecordDescription &description, const void *record,
                    const DetailView &view)
{
    TellMissingNames();
    return IsJson() ? Record(operation, ToJson(description, record, Names().Of(description))) : Help(view(record));
}

Exit Output::Plan(const std::string &operation, const Json &requests, const std::string &undo,
                  const std::string &text)
{
    OpenDocument(operation);
    if (IsJson()) {
        Member("requests", requests);
        Member("undo", undo.empty() ? Json() : Json(undo));
    } else {
        text_ += text;
    }
    return CloseDocument(RSVP_MOR_OK, Exit::Done);
}

Exit Output::Help(const std::string &text)
{
    text_ += text;
    Flush();
    return Exit::Done;
}

Exit Output::Fail(const Outcome &failure, const std::string &headline, const Reason &reason)
{
    // "for interface 3" says it already.
    const std::string link = failure.asked.empty() ? "" : failure.asked.starts_with("for ") ? " " : " for ";
    const std::string asked = link + failure.asked;
    Complain(fmt::format("{}: {}{}{} gave {:#010x} {}", failure.operation, headline, failure.function, asked,
                         failure.status, reason.text.name),
             Advice(reason));
    OpenDocument(failure.operation);
    if (IsJson()) {
        Member("function", failure.function);
        Member("asked", failure.asked);
        Member("stage", reason.stage);
        Member("seconds", manager::LastExchange().seconds);
        MemberReason(reason);
    }
    return CloseDocument(failure.status, reason.text.exit, reason.text.name);
}

Exit Output::Failed(const Outcome &failure)
{
    const manager::Exchange &exchange = manager::LastExchange();
    const manager::Fault fault = FaultOf(failure.status, exchange);
    return Fail(failure, "",
                {NameOf(fault), TextOf(fault, exchange), Explain(failure.status, failure.function, exchange)});
}

Exit Output::NotDone(const Outcome &outcome, const std::string &problem)
{
    const manager::Exchange &exchange = manager::LastExchange();
    const bool givenUp = exchange.givenUp == manager::GivenUp::TimeOver;
    return Fail(outcome, "not known to be done, though ",
                {"verify", problem, givenUp ? Explain(outcome.status, outcome.function, exchange) : NotDoneText()});
}

// Once is enough, also for a batch.
void Output::TellMissingNames()
{
    if (!IsJson() && Names().Daemon().empty() && !std::exchange(toldMissingNames_, true))
        Message("rsvpctl: no dictionary: words have no names");
}

void Output::MemberReason(const Reason &reason)
{
    Member("whatHappened", reason.what);
    Member("likelyCause", reason.text.cause);
    Member("whatToDo", reason.text.remedy);
}

Exit Output::Report(const Outcome &outcome)
{
    return outcome.status == RSVP_MOR_OK ? Done(outcome.operation, outcome.asked) : Failed(outcome);
}

Exit Output::Wrong(const std::string &operation, const std::string &problem, uint32_t status, Exit exit)
{
    Complain(fmt::format("{}: {}", operation, problem));
    OpenDocument(operation);
    if (IsJson())
        Member("error", problem);
    return CloseDocument(status, exit);
}

Exit Output::Broken(const std::string &operation, const std::string &problem)
{
    return Wrong(operation, problem, RSVP_MOR_ERR_FAIL, Exit::Exchange);
}

Exit Output::WrongUsage(const std::string &operation, const UsageError &error)
{
    Complain(error.what());
    if (!error.hint.empty())
        Message("  " + error.hint);
    OpenDocument(operation);
    if (IsJson())
        Member("error", error.what());
    // The library's code for a bad argument; the exit status distinguishes it from a failed exchange.
    return CloseDocument(RSVP_MOR_ERR_FAIL, Exit::Usage);
}

// ---- Rows ----

void Output::BeginList(const std::string &operation)
{
    rows_ = 0;
    inList_ = true;
    function_ = nullptr;
    layout_.reset();
    OpenDocument(operation);
    if (IsJson())
        text_ += ",\"rows\":[\n";
}

std::string Output::Heading(const std::string &text) const
{
    return fmt::format("{}{}{}\n", colorDocument_ ? "\x1b[1m" : "", text, colorDocument_ ? "\x1b[0m" : "");
}

bool Output::Line(const Json &document, const std::string &text)
{
    text_ += IsJson() ? JsonText(document) + "\n" : text;
    return Flush();
}

bool Output::ListRow(const Json &row, const std::string &text)
{
    text_ += IsJson() ? (rows_ == 0 ? "" : ",") + JsonText(row) + "\n" : text;
    ++rows_;
    return Flush();
}

Exit Output::EndList()
{
    if (IsJson()) {
        text_ += "]";
        Member("count", rows_);
        Member("complete", true);
    }
    return CloseDocument(RSVP_MOR_OK, Exit::Done);
}

void Output::BeginRows(const std::string &operation, RowForm form, const char *function)
{
    TellMissingNames();
    BeginList(operation);
    function_ = function;
    form_ = std::move(form);
    sorted_.clear();
    if (HasColumns() && !form_.isScreen)
        layout_.emplace(form_.columns, style_ == Style::Table && !form_.allColumns ? lineWidth_ : SIZE_MAX);
}

std::string Output::RowText(const void *record)
{
    if (layout_)
        return style_ == Style::Csv ? layout_->CsvRow(record) : layout_->Row(record);
    if (!IsJson())
        return form_.detail(record);
    std::string text;
    text.reserve(rowRoom_);
    form_.json(text, record);
    text += '\n';
    rowRoom_ = std::max(rowRoom_, text.size());
    return text;
}

// What stands between two rows, or before the first.
bool Output::WriteRow(const std::string &row)
{
    if (rows_ != 0)
        text_ += IsJson() ? "," : layout_ ? "" : "\n";
    else if (layout_ && form_.hasHeaders)
        text_ += style_ == Style::Csv ? layout_->CsvHeader() : Heading(layout_->Header());
    text_ += row;
    ++rows_;
    return Flush();
}

bool Output::Row(const void *record)
{
    if (!form_.sortBy)
        return WriteRow(RowText(record)) && rows_ < form_.limit;
    const Column &by = *form_.sortBy;
    sorted_.emplace(by.number ? SortKey{by.number(record), ""} : SortKey{0, by.text(record)}, RowText(record));
    // Rows behind the limit need not be kept.
    if (sorted_.size() > form_.limit)
        sorted_.erase(std::prev(sorted_.end()));
    return true;
}

// A table that can no longer be written has no end to report; Finish says what happened.
bool Output::WriteSorted()
{
    for (const auto &[key, row] : std::exchange(sorted_, {})) {
        if (!WriteRow(row))
            break;
    }
    return writeError_ == 0;
}

Exit Output::EndRows(const WalkResult &result)
{
    if (!WriteSorted())
        return Exit::Done;
    if (result.end == WalkEnd::EndOfTable || result.end == WalkEnd::Stopped) {
        EndWholeTable(result);
        return Exit::Done;
    }
    const Reason broken = BreakOf(result, manager::LastExchange());
    const std::string onward =
        result.lastKey.empty() ? "" : fmt::format("; '--after {}' goes on after the last one", result.lastKey);
    Complain(
        fmt::format("{}: walk {} after {}{}", operation_, EndName(result.end), CountText(result.rows, "row"), onward),
        Advice(broken));
    CloseRows(result);
    if (IsJson()) {
        Member("after", result.lastKey.empty() ? Json() : Json(result.lastKey));
        MemberReason(broken);
    }
    return CloseDocument(result.end == WalkEnd::Stuck ? RSVP_MOR_ERR_FAIL : result.status, broken.text.exit,
                         broken.text.name);
}

Exit Output::EndRows(std::span<const manager::TableEnd> tables, uint64_t wanted)
{
    if (!WriteSorted())
        return Exit::Done;
    Exit exit = Exit::Done;
    uint32_t status = RSVP_MOR_OK;
    const char *name = nullptr;
    Json ends = Json::array();
    for (const auto &[table, result, exchange] : tables) {
        ends.push_back({{"table", table->name},
                        {"rows", result.rows},
                        {"end", EndName(result.end)},
                        {"function", result.function},
                        {"whatHappened", nullptr},
                        {"likelyCause", nullptr},
                        {"whatToDo", nullptr}});
        if (result.end == WalkEnd::EndOfTable)
            continue;
        const Reason broken = BreakOf(result, exchange);
        ends.back()["whatHappened"] = broken.what;
        ends.back()["likelyCause"] = broken.text.cause;
        ends.back()["whatToDo"] = broken.text.remedy;
        Complain(fmt::format("{}: {} is missing: walk {} after {}", operation_, table->name, EndName(result.end),
                             CountText(result.rows, "row")),
                 Advice(broken));
        if (exit == Exit::Done) {
            exit = broken.text.exit;
            status = result.end == WalkEnd::Stuck ? RSVP_MOR_ERR_FAIL : result.status;
            name = broken.text.name;
        }
    }
    if (exit == Exit::Done)
        TellRows({WalkEnd::EndOfTable, wanted, RSVP_MOR_OK, "", ""});
    if (IsJson()) {
        text_ += "]";
        Member("count", rows_);
        Member("complete", exit == Exit::Done && wanted <= rows_);
        Member("tables", ends);
    }
    return CloseDocument(status, exit, name);
}

// Rows that were read and not printed are as good as not read.
const char *Output::EndOf(const WalkResult &result) const
{
    return result.rows > rows_ ? "limit" : EndName(result.end);
}

void Output::TellRows(const WalkResult &result)
{
    if (IsJson())
        return;
    const size_t hidden = layout_ ? layout_->Hidden() : 0;
    const std::string more =
        hidden == 0 ? "" : fmt::format("; --detail shows {} more of each", CountText(hidden, "field"));
    Message(fmt::format("{}, {}{}", CountText(rows_, "row"), EndOf(result), more));
}

void Output::EndWholeTable(const WalkResult &result)
{
    TellRows(result);
    CloseRows(result);
    CloseDocument(RSVP_MOR_OK, Exit::Done);
}

void Output::CloseRows(const WalkResult &result)
{
    if (!IsJson())
        return;
    text_ += "]";
    Member("count", rows_);
    Member("complete", result.end == WalkEnd::EndOfTable && result.rows <= rows_);
    Member("end", EndOf(result));
    Member("function", result.function);
}

// ---- Batch ----

void Output::BeginBatch(const std::string &file)
{
    OpenDocument("batch");
    if (IsJson()) {
        Member("file", file);
        text_ += ",\"rows\":[\n";
    }
    batchFile_ = file;
    batchDocuments_ = 0;
    batchExit_ = Exit::Done;
    batchStatus_ = RSVP_MOR_OK;
    inBatch_ = true;
}

void Output::BatchLine(uint64_t line)
{
    batchLine_ = line;
}

Exit Output::EndBatch(bool complete)
{
    inBatch_ = false;
    if (IsJson()) {
        text_ += "]";
        Member("count", batchDocuments_);
        Member("complete", complete);
    }
    return CloseDocument(batchStatus_, batchExit_);
}

} // namespace rsvpctl
