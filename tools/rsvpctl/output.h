// Everything that the tool prints goes through here: the document on standard output (tables, the detail view or one
// JSON document) and what people are told on standard error. Rows are written as they come and none is kept.
#ifndef RSVPCTL_OUTPUT_H
#define RSVPCTL_OUTPUT_H

#include "arguments.h"
#include "render.h"
#include "statuses.h"

#include <cstdio>
#include <optional>
#include <string>

namespace rsvpctl {

/** Of the documents; it changes when a program that reads them must. */
constexpr int kSchemaVersion = 1;

enum class Style : uint8_t { Table, Detail, Json };
enum class Color : uint8_t { Auto, Always, Never };

/** A status that is not 0, with what led to it. */
struct Failure {
    std::string operation; // as the user calls it: "set refresh-interval"
    std::string function;  // the library's function
    std::string asked;     // its arguments in words, no secret among them; may be empty
    uint32_t status;
};

enum class WalkEnd : uint8_t { EndOfTable, Broken, Stuck, ReaderGone };

struct WalkResult {
    WalkEnd end = WalkEnd::EndOfTable;
    uint64_t rows = 0;
    uint32_t status = RSVP_MOR_OK; // what broke it
    const char *function = "";     // the function that was called last
    std::string lastKey;           // key of the last row, as --after takes it; empty before the first
};

class Output {
public:
    Output(Style style, Color color, FILE *document = stdout, FILE *messages = stderr);

    /** A command that was done, with its arguments in words, no secret among them. */
    Exit Done(const std::string &operation, const std::string &asked);

    /** Text that was asked for as text. */
    Exit Help(const std::string &text);

    /** One record. A status other than 0 says that the record tells of a fault, such as a service that is stopped. */
    Exit Record(const std::string &operation, const nlohmann::ordered_json &record, uint32_t status = RSVP_MOR_OK);

    /** The same, where people want to read it in other words than the record's. */
    Exit Record(const std::string &operation, const nlohmann::ordered_json &record, const std::string &text,
                uint32_t status);

    /** What a command would send. */
    Exit Plan(const std::string &operation, const nlohmann::ordered_json &requests, const std::string &text);

    /** An operation that gave a status other than 0. */
    Exit Failed(const Failure &failure);

    /** Arguments that cannot be taken; nothing was sent. */
    Exit WrongUsage(const std::string &operation, const UsageError &error);

    /** The rows of a walk: begin, any number of rows, end. Row gives false when the document cannot be written. */
    void BeginRows(const std::string &operation, const RecordDescription &description,
                   std::span<const char *const> keyColumns);
    bool Row(const void *record);
    Exit EndRows(const WalkResult &result);

    /** A list whose rows are no records: each is an object for programs and text for people. */
    void BeginList(const std::string &operation);
    bool ListRow(const nlohmann::ordered_json &row, const std::string &text);
    Exit EndList();

    /** A line that stands above others. */
    std::string Heading(const std::string &text) const;

    /** One of many documents that tell of what happens, a line each, written at once. False when it cannot be. */
    bool Line(const nlohmann::ordered_json &document, const std::string &text);

    /** From BeginBatch to EndBatch every document becomes a row of the batch's own, and messages name the line. */
    void BeginBatch(const std::string &file);
    void BatchLine(uint64_t line);
    Exit EndBatch(bool complete, uint32_t status, Exit exit);

    /** A line on standard error. */
    void Message(const std::string &text);

    /** The exit status after everything is written: a document that could not be written is a failure of its own,
     * while a reader that went away got what it wanted. */
    Exit Finish(Exit exit);

    bool IsJson() const { return style_ == Style::Json; }

private:
    Exit Document(const std::string &operation, const char *name, const nlohmann::ordered_json &value,
                  const std::string &text, uint32_t status);
    void OpenDocument(const std::string &operation);
    void CloseDocument(uint32_t status, Exit exit);
    void Member(const char *name, const nlohmann::ordered_json &value);
    void Complain(const std::string &text);
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
    const RecordDescription *description_ = nullptr;
    std::optional<TableLayout> layout_;
    uint64_t rows_ = 0;

    std::string batchFile_;
    uint64_t batchLine_ = 0;
    uint64_t batchDocuments_ = 0;
    bool inBatch_ = false;
};

} // namespace rsvpctl

#endif
