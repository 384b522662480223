// The document and the messages. JSON is written piece by piece, since a walk of any length must neither wait for its
// end nor grow in memory; each piece comes from the JSON library, so that nothing is quoted by hand.
#include "tools/rsvpctl/print/output.h"

#include "manager/record/text.h"
#include "tools/rsvpctl/print/interrupt.h"
#include "tools/rsvpctl/print/terminal.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <sys/ioctl.h>
#include <unistd.h>

namespace rsvpctl {
namespace {

using manager::CountText, manager::Json, manager::WalkEnd, manager::WalkResult;

constexpr size_t kWidthWithoutTerminal = 120;

bool UseColor(Color color, FILE *stream)
{
    if (color != Color::Auto)
        return color == Color::Always;
    const char *off = std::getenv("NO_COLOR");
    return (off == nullptr || *off == '\0') && TakesEscapes(fileno(stream));
}

size_t LineWidth(FILE *stream)
{
    winsize size{};
    const bool known = isatty(fileno(stream)) == 1 && ioctl(fileno(stream), TIOCGWINSZ, &size) == 0;
    return known && size.ws_col > 0 ? size.ws_col : kWidthWithoutTerminal;
}

const char *EndName(WalkEnd end)
{
    switch (end) {
    case WalkEnd::EndOfTable:
        return "end of table";
    case WalkEnd::Stuck:
        return "stuck";
    default:
        return "broken";
    }
}

std::string Advice(const char *cause, const char *remedy)
{
    return fmt::format("\n  likely cause: {}\n  what to do:   {}", cause, remedy);
}

std::string Advice(const StatusText &text)
{
    return Advice(text.cause, text.remedy);
}

std::string MemberText(const char *name, const Json &value)
{
    return fmt::format(",\"{}\":{}", name, value.dump());
}

std::string EndText(uint32_t status, Exit exit)
{
    return MemberText("status", status) + MemberText("statusName", Explain(status).name) +
           MemberText("exitStatus", static_cast<int>(exit)) + "}\n";
}

} // namespace

Output::Output(Style style, Color color, FILE *document, FILE *messages)
    : style_(style), document_(document), messages_(messages), colorDocument_(UseColor(color, document)),
      colorMessages_(UseColor(color, messages)), lineWidth_(LineWidth(document))
{
}

// What makes a whole document of what is written so far. A document without rows is written at once.
std::string Output::Ending() const
{
    static const std::string end = EndText(RSVP_MOR_ERR_FAIL, Exit::Interrupted);
    std::string text;
    if (inList_) {
        text += "]" + MemberText("count", rows_) + MemberText("complete", false);
        if (table_ != nullptr)
            text += MemberText("end", "interrupted") + MemberText("function", table_->next.function);
        text += end;
    }
    if (inBatch_)
        text += "]" + MemberText("count", batchDocuments_) + MemberText("complete", false) + end;
    return text;
}

void Output::EndWholeOnInterrupt(const std::string &operation)
{
    OpenDocument(operation);
    Member("error", "interrupted");
    EndDocumentOnInterrupt(std::exchange(text_, {}) + EndText(RSVP_MOR_ERR_FAIL, Exit::Interrupted));
}

bool Output::Flush()
{
    DocumentWrite write;
    if (IsJson())
        write.SetEnding(Ending());
    if (writeError_ == 0 && !text_.empty() &&
        (std::fwrite(text_.data(), 1, text_.size(), document_) != text_.size() || std::fflush(document_) != 0))
        writeError_ = errno;
    text_.clear();
    return writeError_ == 0;
}

void Output::Message(const std::string &text)
{
    // If standard error cannot be written, there is nowhere left to say so.
    (void)std::fwrite(text.data(), 1, text.size(), messages_);
    (void)std::fputc('\n', messages_);
}

void Output::Complain(const std::string &text)
{
    const std::string where = inBatch_ ? fmt::format("{}:{}: ", batchFile_, batchLine_) : "";
    Message(fmt::format("{}rsvpctl: {}{}{}", colorMessages_ ? "\x1b[31m" : "", where, colorMessages_ ? "\x1b[0m" : "",
                        text));
}

Exit Output::Finish(Exit exit)
{
    if (writeError_ == 0 || writeError_ == EPIPE)
        return exit;
    Message(fmt::format("rsvpctl: the output could not be written: {}", std::strerror(writeError_)));
    return Exit::Exchange;
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
    text_ += fmt::format("\"operation\":{}", Json(operation).dump());
}

void Output::Member(const char *name, const Json &value)
{
    text_ += MemberText(name, value);
}

void Output::CloseDocument(uint32_t status, Exit exit)
{
    if (IsJson())
        text_ += EndText(status, exit);
    inList_ = false;
    Flush();
}

Exit Output::Document(const std::string &operation, const char *name, const Json &value, const std::string &text,
                      uint32_t status)
{
    OpenDocument(operation);
    if (IsJson())
        Member(name, value);
    else
        text_ += text;
    const Exit exit = Explain(status).exit;
    CloseDocument(status, exit);
    return exit;
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
                    std::string (*view)(const void *record))
{
    return IsJson() ? Record(operation, ToJson(description, record)) : Help(view(record));
}

Exit Output::Plan(const std::string &operation, const Json &requests, const std::string &text)
{
    return Document(operation, "requests", requests, text, RSVP_MOR_OK);
}

Exit Output::Help(const std::string &text)
{
    text_ += text;
    Flush();
    return Exit::Done;
}

Exit Output::Failed(const Outcome &failure)
{
    const StatusText &text = Explain(failure.status, failure.function);
    const std::string asked = failure.asked.empty() ? "" : " for " + failure.asked;
    Complain(fmt::format("{}: {}{} gave {:#010x} {}{}", failure.operation, failure.function, asked, failure.status,
                         text.name, Advice(text)));
    OpenDocument(failure.operation);
    if (IsJson()) {
        Member("function", failure.function);
        Member("asked", failure.asked);
        Member("likelyCause", text.cause);
    }
    CloseDocument(failure.status, text.exit);
    return text.exit;
}

Exit Output::Report(const Outcome &outcome)
{
    return outcome.status == RSVP_MOR_OK ? Done(outcome.operation, outcome.asked) : Failed(outcome);
}

Exit Output::Wrong(const std::string &operation, const std::string &error, uint32_t status, Exit exit)
{
    Complain(error);
    OpenDocument(operation);
    if (IsJson())
        Member("error", error);
    CloseDocument(status, exit);
    return exit;
}

Exit Output::WrongUsage(const std::string &operation, const UsageError &error)
{
    // The library's code for a bad argument; the exit status distinguishes it from a failed exchange.
    const Exit exit = Wrong(operation, error.what(), RSVP_MOR_ERR_FAIL, Exit::Usage);
    if (!error.hint.empty())
        Message("  " + error.hint);
    return exit;
}

// ---- Rows ----

void Output::BeginList(const std::string &operation)
{
    rows_ = 0;
    inList_ = true;
    table_ = nullptr;
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
    text_ += IsJson() ? document.dump() + "\n" : text;
    return Flush();
}

bool Output::ListRow(const Json &row, const std::string &text)
{
    if (IsJson())
        text_ += (rows_ == 0 ? "" : ",") + row.dump() + "\n";
    else
        text_ += text;
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
    CloseDocument(RSVP_MOR_OK, Exit::Done);
    return Exit::Done;
}

void Output::BeginRows(const std::string &operation, const manager::Table &table)
{
    BeginList(operation);
    table_ = &table;
}

bool Output::Row(const void *record)
{
    if (style_ == Style::Table) {
        if (rows_ == 0)
            text_ += Heading(layout_.emplace(*table_, lineWidth_).Header());
        return ListRow(nullptr, layout_->Row(record));
    }
    const Json row = ToJson(table_->row(), record);
    return ListRow(row, IsJson() ? "" : (rows_ == 0 ? "" : "\n") + DetailText(row));
}

bool Output::Row(const void *record, const std::string &text)
{
    return ListRow(IsJson() ? ToJson(table_->row(), record) : Json(), text);
}

Exit Output::EndRows(const WalkResult &result)
{
    // A table that can no longer be written has no end to report; Finish says what happened.
    if (result.end == WalkEnd::Stopped)
        return Exit::Done;
    const std::string count = CountText(result.rows, "row");
    const std::string onward =
        result.lastKey.empty() ? "" : fmt::format("; '--after {}' goes on after the last one", result.lastKey);
    const StatusText &text = Explain(result.status, result.function);
    Exit exit = text.exit;
    if (result.end == WalkEnd::Broken) {
        Complain(fmt::format("{}: {} gave {:#010x} {}, walk broken after {}{}{}", operation_, result.function,
                             result.status, text.name, count, onward, Advice(text)));
    } else if (result.end == WalkEnd::Stuck) {
        exit = Exit::Exchange;
        Complain(fmt::format("{}: {} gave a row that was there before, walk stuck after {}{}", operation_,
                             result.function, count,
                             Advice("the table changed in mid-walk, or the daemon does not advance",
                                    "try again; if it stays so, look at the daemon's log")));
    } else if (!IsJson()) {
        const size_t hidden = layout_ ? layout_->HiddenFields() : 0;
        const std::string more =
            hidden == 0 ? "" : fmt::format("; --detail shows {} more of each", CountText(hidden, "field"));
        Message(count + ", end of table" + more);
    }
    if (IsJson()) {
        text_ += "]";
        Member("count", result.rows);
        Member("complete", result.end == WalkEnd::EndOfTable);
        Member("end", EndName(result.end));
        Member("function", result.function);
    }
    CloseDocument(result.end == WalkEnd::Stuck ? RSVP_MOR_ERR_FAIL : result.status, exit);
    return exit;
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
    inBatch_ = true;
}

void Output::BatchLine(uint64_t line)
{
    batchLine_ = line;
}

Exit Output::EndBatch(bool complete, uint32_t status, Exit exit)
{
    inBatch_ = false;
    if (IsJson()) {
        text_ += "]";
        Member("count", batchDocuments_);
        Member("complete", complete);
    }
    CloseDocument(status, exit);
    return exit;
}

} // namespace rsvpctl
