// How a table of the daemon is read: one description a table, one walk for all of them, over held and own sessions
// alike. The walk keeps one row and two keys, so that its memory does not grow with the table, and it tells three
// ends apart: the daemon said that there is no further row, an exchange broke it, or the keys do not advance.
#ifndef RSVPCTL_WALK_H
#define RSVPCTL_WALK_H

#include "command_line.h"

#include <array>
#include <chrono>
#include <cstring>
#include <type_traits>

namespace rsvpctl {

/**
 * A session for the reads that want a held one; closed with the object. A command opens its own and never takes over
 * one on which an exchange failed: the late reply would be taken for the answer to the next question, since replies
 * are matched by order alone.
 */
class Session {
public:
    explicit Session(bool wanted) : fd_(wanted ? RSVP_MOR_LIPCOpen() : -1), wanted_(wanted) {}
    ~Session()
    {
        if (fd_ >= 0)
            RSVP_MOR_LIPCClose(fd_);
    }
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    bool IsMissing() const { return wanted_ && fd_ < 0; }
    int32_t Fd() const { return fd_; }

private:
    int32_t fd_;
    bool wanted_;
};

/** How one table is read. `Key` is a record whose fields a user can type, with a description of its own. */
template <typename Row, typename Key> struct Table {
    bool held; // the functions take a held session; the others ignore `fd`
    const char *firstFunction;
    uint32_t (*first)(int32_t fd, Row *row);
    const char *nextFunction;
    uint32_t (*next)(int32_t fd, const Key &key, Row *row);
    Key (*keyOf)(const Row &row);
    const char *getFunction = nullptr; // null where a row cannot be asked for by its key
    uint32_t (*get)(int32_t fd, const Key &key, Row *row) = nullptr;
    void (*release)(Row *row) = nullptr;               // null where a row owns nothing
    std::array<const char *, 2> keyColumns = {"", ""}; // fields of the key that do not stand in front of the row
};

/** Finds a key that comes back, at once or after a round of any length, with two keys for memory: the one before, and
 * one that is replaced each time the number of rows has doubled. */
template <typename Key> class RepeatFinder {
public:
    static_assert(std::has_unique_object_representations_v<Key>, "keys are compared byte by byte");

    bool Repeats(const Key &key)
    {
        if (rows_ != 0 && (Equal(key, previous_) || Equal(key, kept_)))
            return true;
        previous_ = key;
        if (++rows_ == nextKept_) {
            kept_ = key;
            nextKept_ *= 2;
        }
        return false;
    }

private:
    static bool Equal(const Key &a, const Key &b) { return std::memcmp(&a, &b, sizeof(Key)) == 0; }

    Key previous_{};
    Key kept_{};
    uint64_t rows_ = 0;
    uint64_t nextKept_ = 1;
};

/** Rows and rows per second on standard error, if that is a terminal and the walk takes longer than a second. */
class Progress {
public:
    Progress();
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    void BeforeRow();
    void AfterRow(uint64_t rows);

private:
    using Clock = std::chrono::steady_clock;
    void Clear();

    bool onTerminal_;
    bool rowsOnTerminal_;
    bool shown_ = false;
    Clock::time_point start_;
    Clock::time_point next_;
};

/** Walks a table from its first row, or from the row behind `after`. `onRow` prints a row; false ends the walk. */
template <typename Row, typename Key, typename OnRow>
WalkResult Walk(const Table<Row, Key> &table, int32_t fd, const Key *after, OnRow onRow)
{
    WalkResult result;
    RepeatFinder<Key> finder;
    Row row{};
    Key key{};
    uint32_t status = RSVP_MOR_OK;
    if (after != nullptr) {
        key = *after;
        finder.Repeats(key);
        result.function = table.nextFunction;
        status = table.next(fd, key, &row);
    } else {
        result.function = table.firstFunction;
        status = table.first(fd, &row);
    }
    while (status == RSVP_MOR_OK) {
        const Key next = table.keyOf(row);
        const bool repeats = finder.Repeats(next);
        const bool goOn = !repeats && onRow(row);
        if (table.release != nullptr)
            table.release(&row);
        if (!goOn) {
            result.end = repeats ? WalkEnd::Stuck : WalkEnd::ReaderGone;
            return result;
        }
        ++result.rows;
        key = next;
        row = Row{};
        result.function = table.nextFunction;
        status = table.next(fd, key, &row);
    }
    if (status == RSVP_MOR_ERR_NOT_EXIST)
        return result;
    result.end = WalkEnd::Broken;
    result.status = status;
    if (result.rows != 0)
        result.lastKey = KeyText(Describe<Key>(), &key);
    return result;
}

/** `show` of the one record that a held-session function reads. */
template <typename Record>
Exit ShowHeld(Output &out, const std::string &operation, const char *function,
              uint32_t (*read)(int32_t fd, Record *record))
{
    const Session session(true);
    if (session.IsMissing())
        return out.Failed({operation, "RSVP_MOR_LIPCOpen", "", RSVP_MOR_ERR_LIPC});
    Record record{};
    const uint32_t status = read(session.Fd(), &record);
    if (status != RSVP_MOR_OK)
        return out.Failed({operation, function, "", status});
    return out.Record(operation, ToJson(Describe<Record>(), &record));
}

/** `show` of a whole table, or of what is behind the key in `after` (empty: from the first row). */
template <typename Row, typename Key>
Exit ShowTable(Output &out, const std::string &operation, const Table<Row, Key> &table, const std::string &after)
{
    Key afterKey{};
    if (!after.empty())
        RequireKey(Describe<Key>(), after, &afterKey);
    out.BeginRows(operation, Describe<Row>(), table.keyColumns);
    const Session session(table.held);
    if (session.IsMissing())
        return out.EndRows({WalkEnd::Broken, 0, RSVP_MOR_ERR_LIPC, "RSVP_MOR_LIPCOpen", ""});
    WalkResult result;
    {
        Progress progress;
        uint64_t rows = 0;
        result = Walk(table, session.Fd(), after.empty() ? nullptr : &afterKey, [&](const Row &row) {
            progress.BeforeRow();
            const bool written = out.Row(&row);
            progress.AfterRow(++rows);
            return written;
        });
    }
    return out.EndRows(result);
}

/** `show` of the one row that a key names. */
template <typename Row, typename Key>
Exit ShowRow(Output &out, const std::string &operation, const Table<Row, Key> &table, const std::string &keyText)
{
    Key key{};
    RequireKey(Describe<Key>(), keyText, &key);
    const Session session(table.held);
    if (session.IsMissing())
        return out.Failed({operation, "RSVP_MOR_LIPCOpen", "", RSVP_MOR_ERR_LIPC});
    Row row{};
    const uint32_t status = table.get(session.Fd(), key, &row);
    if (status != RSVP_MOR_OK)
        return out.Failed({operation, table.getFunction, "key " + keyText, status});
    const Exit exit = out.Record(operation, ToJson(Describe<Row>(), &row));
    if (table.release != nullptr)
        table.release(&row);
    return exit;
}

/** Adds `show WORD [KEY] [--after KEY]` for a table. */
template <typename Row, typename Key>
Command &AddTable(CommandLine &line, CLI::App &parent, const std::string &word, const std::string &help,
                  const Table<Row, Key> &table)
{
    const RecordDescription &keyFields = Describe<Key>();
    const std::string name = "  rsvpctl " + PathOf(parent) + " " + word;
    std::string examples = name + "\n" + name + " --json\n" + name + " --after " + KeyShape(keyFields);
    if (table.get != nullptr)
        examples += "\n" + name + " " + KeyShape(keyFields);
    Command &command = line.Add(parent, word, help, examples);
    const CLI::Option *after = AddKey(*command.parser, "--after", keyFields, "Begin behind the row with this key");
    const CLI::Option *key = nullptr;
    if (table.get != nullptr)
        key = AddKey(*command.parser, "key,--key", keyFields, "One row only")->excludes("--after");
    command.run = [&command, &table, key, after](Output &out) {
        const std::string one = TextValue(key);
        return one.empty() ? ShowTable(out, command.name, table, TextValue(after))
                           : ShowRow(out, command.name, table, one);
    };
    return command;
}

} // namespace rsvpctl

#endif
