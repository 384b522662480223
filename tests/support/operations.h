// Every exported function that sends a message, once, with the message that it must send and a good reply to it. The
// tests of requests and of failures run over this one table, which is tied to the list of exported names.
#pragma once

#include "support/world.h"

namespace scripted {

// How a function comes to its session, what it does with `op`, and what it answers when the service does not run.
enum Manner {
    PLAIN,      // own session, no gate; the message is always the same
    SENDS_OP,   // own session, no gate; sends `op`
    GATED,      // own session; a stopped service has nothing to undo and nothing to set; sends `op`
    GATED_ONLY, // the same, and `op` is for the gate alone
    REFUSED,    // own session; a stopped service is an error
    COUNTED,    // own session; a stopped service is a count of 0
    DISABLES,   // own session; then it is the database that decides
    ON_HELD,    // held session
    ON_HELD_OP, // held session; sends `op`
};

// What a read makes of the body of a reply.
enum Reader {
    DROPPED,     // nothing
    TAKEN,       // whatever there is, down to an empty body
    NEEDS_ITEM,  // an item of any length
    NEEDS_COUNT, // an item of four bytes or more
    EXACT,       // a body of one length
    LISTS,       // a walk over items, with memory on the heap
};

struct Record {
    void *at;
    template <typename Type> operator Type *() const { return static_cast<Type *>(at); }
};

struct Answer {
    Reader reader = DROPPED;
    size_t size = 0;          // of the record
    std::string content = ""; // words of ToHost for a fixed record, of Body for LISTS
    size_t value = 0;         // length of the value, of a fixed record that is not the wire's image
    void (*release)(Record) = nullptr;
    bool resets = true; // the release may be called twice
};

struct Operation {
    const char *name;
    uint32_t (*call)(uint32_t op, Record record);
    Manner manner;
    std::string request; // hex text, with `op` 0
    Answer answer = {};
};

const std::vector<Operation> &Operations();

// Exported functions that send nothing; each has a test of its own.
const std::set<std::string> &Silent();

bool OwnSession(const Operation &operation);
Bytes GoodBody(const Operation &operation);

// Runs an operation on a record that is zeroed, if it has lists, or holds the words 11223300, 11223301 and so on.
struct Outcome {
    uint32_t status;
    Bytes before;
    Bytes after;
};
Outcome Perform(const Operation &operation, const Bytes &reply, uint32_t op = 0);

// Releases what the last Perform left in its record.
void Release(const Operation &operation);

} // namespace scripted
