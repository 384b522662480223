// A dictionary says what one daemon means by the words of its records: the library hands over every byte, and what
// stands in most of them is the daemon's choice. It is data, in one file a daemon, that every program reads. It is
// checked against the descriptions of the records when it is read, so that nobody works with half of one.
#ifndef MANAGER_DICTIONARY_DICTIONARY_H
#define MANAGER_DICTIONARY_DICTIONARY_H

#include "manager/dictionary/meaning.h"

#include <set>
#include <span>
#include <stdexcept>
#include <string_view>

namespace manager {

/** The meanings of a record's own fields, in its order, and of the records inside it, by the name of their field. */
struct RecordMeanings {
    std::string name; // of a route; empty for what has none
    std::vector<Meaning> own;
    std::map<std::string, RecordMeanings, std::less<>> inside;

    /** Whether none of the record's own fields has a meaning, and none of its lists. */
    bool IsEmpty() const;

    const Meaning *Find(std::string_view wanted) const;
    const RecordMeanings &Inside(std::string_view field) const; // without a meaning where there is none
};

/** A meaning in a record, or in a record inside it that begins at `base`. */
struct PlacedMeaning {
    const Meaning *meaning;
    uint32_t base;

    uint32_t Offset() const { return base + meaning->offset; }
};

/** The meanings of a record and of the records inside it, in the order of the outer record; those of lists are not
 * among them. */
std::vector<PlacedMeaning> AllMeanings(const RecordDescription &record, const RecordMeanings &meanings);

/** What a name stands for in one kind of record; where the dictionary has no such name, it stands for nothing. */
class NamedValue {
public:
    NamedValue(const RecordDescription &record, const RecordMeanings &meanings, std::string_view name);

    explicit operator bool() const { return placed_.meaning != nullptr; }

    /** The number in a record; 0 if the name stands for nothing. */
    uint64_t NumberIn(const void *record) const;

    /** The value as people read it; empty if the name stands for nothing. */
    std::string TextIn(const void *record) const;

    /** Whether the value can be this word. */
    bool HasWord(std::string_view word) const;

private:
    PlacedMeaning placed_{nullptr, 0};
};

/** The meaning of what lies at an offset of a record; null if it has none. */
const Meaning *MeaningAt(const RecordDescription &record, const RecordMeanings &meanings, uint32_t offset);

/** What a table is made of, for the part of a dictionary that is about tables. */
struct TableShape {
    const char *name;
    const RecordDescription *row;
    const RecordDescription *key;
};

struct TableMeanings {
    std::vector<KeyPart> nextKey;     // empty: the dictionary does not say it
    std::vector<std::string> columns; // names and fields, in the order of the table; empty: all
};

/** A dictionary that cannot be used: "FILE:LINE: KEY: what is wrong". */
struct DictionaryError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

class Dictionary {
public:
    /** The one without a daemon: nothing has a name. */
    Dictionary();

    /** Reads the text of a dictionary; `file` is its name in what is refused. Throws DictionaryError. */
    Dictionary(std::string_view text, const std::string &file, std::span<const TableShape> tables);

    /** The daemon's name; empty for the one that names nothing. */
    const std::string &Daemon() const { return daemon_; }

    /** Its name in what is refused; empty for the one that names nothing. */
    const std::string &File() const { return file_; }

    /** Whether the daemon ends a table in order with this status. */
    bool EndsTable(uint32_t status) const { return ends_.contains(status); }

    const RecordMeanings &Of(const RecordDescription &record) const;
    const TableMeanings &OfTable(std::string_view name) const;

private:
    std::string file_;
    std::string daemon_;
    std::set<uint32_t> ends_;
    std::map<std::string, RecordMeanings, std::less<>> records_;
    std::map<std::string, TableMeanings, std::less<>> tables_;
};

} // namespace manager

#endif
