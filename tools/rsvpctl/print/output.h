// Everything that the tool prints goes through here: the document on standard output (tables, the detail view or one
// JSON document) and the messages on standard error. Rows are written as they come and are not kept.
#ifndef TOOLS_RSVPCTL_PRINT_OUTPUT_H
#define TOOLS_RSVPCTL_PRINT_OUTPUT_H

#include "manager/record/json.h"
#include "manager/table/walk.h"
#include "tools/rsvpctl/print/render.h"
#include "tools/rsvpctl/print/statuses.h"
#include "tools/rsvpctl/print/usage_error.h"

#include <cstdio>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>

namespace rsvpctl {

/** Version of the documents: it changes when the programs that read them must change too. */
constexpr int kSchemaVersion = 1;

enum class Style : uint8_t {
    Table,  // the columns that fit into a line
    Wide,   // all columns
    Csv,    // all columns, for other programs
    Detail, // every field of a row
    Json,
};
enum class Color : uint8_t { Auto, Always, Never };

/** Everything about one row. */
using DetailView = std::function<std::string(const void *row)>;

/** How rows are printed. */
struct RowForm {
    Columns columns;
    bool allColumns = false; // none is hidden, however long the line
    bool isScreen = false;   // everything about each row, though nobody asked for details
    DetailView detail;
    std::function<void(std::string &out, const void *row)> json; // appends the row as an object
    std::optional<Column> sortBy = {};                           // then the rows wait for the last one
    uint64_t limit = UINT64_MAX;
    bool hasHeaders = true;
};

/** What a call of the library gave. */
struct Outcome {
    std::string operation; // as the user calls it: "set refresh-interval"
    std::string function;  // the library's function
    std::string asked;     // its arguments in words, no secret among them; may be empty
    uint32_t status;
};

/** Why something did not come to its end. */
struct Reason {
    const char *stage; // as NameOf(Fault) has it, or "verify" for what was found when looking afterwards
    std::string what;
    StatusText text;
};

class Output {
public:
    Output(Style style, Color color, FILE *document = stdout, FILE *messages = stderr);

    /** A command that was done, with its arguments in words, no secret among them. */
    Exit Done(const std::string &operation, const std::string &asked);

    /** Text that was asked for as text. */
    Exit Help(const std::string &text);

    /** One record. A status other than 0 means that the record reports a fault, such as a service that is stopped. */
    Exit Record(const std::string &operation, const manager::Json &record, uint32_t status = RSVP_MOR_OK);

    /** The same, where people want to read it in other words than the record's. */
    Exit Record(const std::string &operation, const manager::Json &record, const std::string &text, uint32_t status);

    /** A record of the library's, where people want to read a view of it. */
    Exit Record(const std::string &operation, const manager::RecordDescription &description, const void *record,
                const DetailView &view);

    /** What a command would send, and the command that takes it back; an empty text if there is none. */
    Exit Plan(const std::string &operation, const manager::Json &requests, const std::string &undo,
              const std::string &text);

    /** An operation that gave a status other than 0. */
    Exit Failed(const Outcome &failure);

    /** Done or failed, as the status says. */
    Exit Report(const Outcome &outcome);

    /** An operation that gave the status 0 and yet is not known to be done. */
    Exit NotDone(const Outcome &outcome, const std::string &problem);

    /** An answer that lacks what was asked for. */
    Exit Wrong(const std::string &operation, const std::string &problem, uint32_t status, Exit exit);

    /** A command that the system did not let come to its end: no process, no memory. */
    Exit Broken(const std::string &operation, const std::string &problem);

    /** Arguments that cannot be taken; nothing was sent. */
    Exit WrongUsage(const std::string &operation, const UsageError &error);

    /** Rows: begin, any number of rows, end. Row gives false when no more are wanted: they are as many as the form
     * allows, or the document cannot be written. The rows of a walk come from `function`. */
    void BeginRows(const std::string &operation, RowForm form, const char *function = nullptr);
    bool Row(const void *record);
    Exit EndRows(const manager::WalkResult &result);

    /** The end of rows that were joined from tables, where the user wanted so many of them. */
    Exit EndRows(std::span<const manager::TableEnd> tables, uint64_t wanted);

    /** A list whose rows are more than records: each is an object for programs and text for people. */
    void BeginList(const std::string &operation);
    bool ListRow(const manager::Json &row, const std::string &text);
    Exit EndList();

    /** The text as a heading. */
    std::string Heading(const std::string &text) const;

    /** One of many documents that report events, one a line, written at once. False when it cannot be written. */
    bool Line(const manager::Json &document, const std::string &text);

    /** From BeginBatch to EndBatch every document becomes a row of the batch's own, and messages name the line. */
    void BeginBatch(const std::string &file);
    void BatchLine(uint64_t line);
    Exit EndBatch(bool complete);

    /** A line on standard error. What would steer a terminal is shown, not sent to it: words come from files and
     * command lines. */
    void Message(const std::string &text);

    /** Says once that words have no names, if no dictionary gives them. */
    void TellMissingNames();

    /** From now on Ctrl-C, or the end of the time, ends the document as a whole one, and the process. It is a
     * document of the operation even if nothing of one is written. */
    void EndWholeWhenEarly(const std::string &operation);

    /** The exit status after everything is written: a document that could not be written is a failure of its own,
     * but a reader that went away got what it wanted. */
    Exit Finish(Exit exit);

    Style ChosenStyle() const { return style_; }
    bool HasColumns() const { return style_ == Style::Table || style_ == Style::Wide || style_ == Style::Csv; }
    bool IsJson() const { return style_ == Style::Json; }

private:
    /** By number, or by text where there is none. */
    using SortKey = std::pair<uint64_t, std::string>;

    Exit Document(const std::string &operation, const char *name, const manager::Json &value, const std::string &text,
                  uint32_t status);
    void OpenDocument(const std::string &operation);
    Exit CloseDocument(uint32_t status, Exit exit, const char *name = nullptr);
    std::string RowText(const void *record);
    bool WriteRow(const std::string &row);
    bool WriteSorted();
    void TellRows(const manager::WalkResult &result);
    const char *EndOf(const manager::WalkResult &result) const;
    void EndWholeTable(const manager::WalkResult &result);
    void CloseRows(const manager::WalkResult &result);
    Exit Fail(const Outcome &failure, const std::string &headline, const Reason &reason);
    void MemberReason(const Reason &reason);
    void Member(const char *name, const manager::Json &value);
    std::string Ending(Exit exit) const;
    std::string EndingWithout(const std::string &operation, Exit exit);
    void Write(const std::string &line);
    void Complain(const std::string &text, const std::string &below = {});
    bool Flush();

    Style style_;
    FILE *document_;
    FILE *messages_;
    bool colorDocument_;
    bool colorMessages_;
    size_t lineWidth_;
    std::string text_; // what is not written yet: never more than one row
    int writeError_ = 0;

    std::string operation_;
    const char *function_ = nullptr;
    std::optional<TableLayout> layout_;
    RowForm form_;
    std::multimap<SortKey, std::string> sorted_; // rows that wait
    uint64_t rows_ = 0;
    size_t rowRoom_ = 0; // of the largest document of a row: the next one is about as large
    bool inList_ = false;

    std::string batchFile_;
    uint64_t batchLine_ = 0;
    uint64_t batchDocuments_ = 0;
    Exit batchExit_ = Exit::Done; // the highest of the lines, and the status of the first line that has it
    uint32_t batchStatus_ = RSVP_MOR_OK;
    bool inBatch_ = false;
    bool toldMissingNames_ = false;
};

} // namespace rsvpctl

#endif
