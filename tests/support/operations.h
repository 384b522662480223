// Every exported function that sends a message, with the message that it must send and a good reply to it. The tests
// of requests and of failures run over this one table; a test compares it with the list of exported names.
#ifndef TESTS_SUPPORT_OPERATIONS_H
#define TESTS_SUPPORT_OPERATIONS_H

#include "tests/support/world.h"

namespace scripted {

// Which session a function uses, what it does with `op`, and what it returns if the service does not run.
enum Manner {
    kPlain,     // own session, no gate; the message is always the same
    kSendsOp,   // own session, no gate; sends `op`
    kGated,     // own session; if the service is stopped, an undo succeeds and a set fails; sends `op`
    kGatedOnly, // the same, and `op` is for the gate alone
    kRefused,   // own session; a stopped service is an error
    kCounted,   // own session; a stopped service is a count of 0
    kDisables,  // own session; if the exchange fails, the database decides
    kOnHeld,    // held session
    kOnHeldOp,  // held session; sends `op`
};

// What a read accepts as the body of a reply.
enum Reader {
    kDropped,    // the body is ignored
    kTaken,      // anything, even an empty body
    kNeedsItem,  // an item of any length
    kNeedsCount, // an item of four bytes or more
    kExact,      // a body of one length
    kLists,      // a walk over items, with memory on the heap
};

struct Record {
    void *at;
    template <typename Type> operator Type *() const { return static_cast<Type *>(at); }
};

struct Answer {
    Reader reader = kDropped;
    size_t size = 0;          // of the record
    std::string content = ""; // words of ToHost for a fixed record, of Body for kLists
    size_t value = 0;         // length of the value, if a fixed record is not the wire's image
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

// Exported functions that send nothing; each is tested by itself.
const std::set<std::string> &Silent();

bool OwnSession(const Operation &operation);
Bytes GoodBody(const Operation &operation);

// Runs an operation on a record: a zeroed one if it has lists, else one that holds the words 11223300, 11223301...
struct Outcome {
    uint32_t status;
    Bytes before;
    Bytes after;
};
Outcome Perform(const Operation &operation, const Bytes &reply, uint32_t op = 0);

// Releases what the last Perform left in its record.
void Release(const Operation &operation);

} // namespace scripted

#endif
