// Owning wrappers for C++20: a session that closes itself, records that release their lists, tables as ranges. Header
// only: a pattern to copy from, not part of the library's interface.
#ifndef EXAMPLES_RSVP_MOR_HPP
#define EXAMPLES_RSVP_MOR_HPP

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <span>
#include <utility>

#include <rsvp_mor.h>

namespace rsvp_mor {

/** A held session. It serves one thread at a time. */
class Session {
public:
    Session() : fd_(RSVP_MOR_LIPCOpen()) {}
    ~Session() { Close(); }
    Session(Session &&other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Session &operator=(Session &&) = delete;

    bool IsOpen() const { return fd_ >= 0; }
    int32_t Fd() const { return fd_; }

    /** Also for use after a failed exchange: a late reply would be taken for the answer to the next request. */
    void Close()
    {
        if (IsOpen())
            RSVP_MOR_LIPCClose(std::exchange(fd_, -1));
    }

private:
    int32_t fd_;
};

/** A record and its lists. Only for records that may be released twice: the destructor releases in any case. */
template <typename Record, void (*Release)(Record *)> class Owned {
public:
    Owned() = default;
    ~Owned() { Release(&record_); }
    Owned(Owned &&other) noexcept : record_(std::exchange(other.record_, Record{})) {}
    Owned &operator=(Owned &&) = delete;

    const Record &operator*() const { return record_; }
    const Record *operator->() const { return &record_; }

    /** The record for the next get: its lists are released and every list slot is null. */
    Record *Fresh()
    {
        Release(&record_);
        record_ = {};
        return &record_;
    }

private:
    Record record_{};
};

using PathState = Owned<RSVP_MOR_ReplyPsb, RSVP_MOR_FreeReplyPsb>;
using ReservationState = Owned<RSVP_MOR_ReplyRsb, RSVP_MOR_FreeReplyRsb>;
using PreviousHopState = Owned<RSVP_MOR_ReplyPhsb, RSVP_MOR_FreeReplyPhsb>;
using CrLsp = Owned<RSVP_MOR_ReplyCrlsp, RSVP_MOR_FreeReplyCrlsp>;

/** A table, for Walk: how to get its first row and its next one, and the key in between. Other tables need a struct
 * like this one. */
struct PathStates {
    using Row = PathState;
    struct Key {
        RSVP_MOR_Session session;
        RSVP_MOR_Sender sender;
        explicit Key(const RSVP_MOR_ReplyPsb &row) : session(row.session), sender(row.sender) {}
    };
    static uint32_t First(int32_t fd, RSVP_MOR_ReplyPsb *row) { return RSVP_MOR_GetFirstPsbInfo(fd, row); }
    static uint32_t Next(int32_t fd, const Key &key, RSVP_MOR_ReplyPsb *row)
    {
        return RSVP_MOR_GetNextPsbInfo(fd, &key.session, &key.sender, row);
    }
};

enum class WalkEnd : uint8_t {
    None,     // the loop was left before the end
    Complete, // every row was seen
    Broken,   // a status that is not the end of a table; see Walk::Status
    Stuck,    // the daemon sent the same row again
};

/** One walk of a table, for a range-based for loop; afterwards End says how it ended. The session must outlive it. */
template <typename Table> class Walk {
public:
    using Row = typename Table::Row;
    using Key = typename Table::Key;

    class Iterator {
    public:
        using value_type = Row;
        using difference_type = ptrdiff_t;

        explicit Iterator(Walk &walk) : walk_(&walk) {}
        const auto &operator*() const { return *walk_->row_; }
        Iterator &operator++()
        {
            walk_->Advance();
            return *this;
        }
        void operator++(int) { walk_->Advance(); }
        bool operator==(std::default_sentinel_t) const { return walk_->end_ != WalkEnd::None; }

    private:
        Walk *walk_;
    };

    explicit Walk(const Session &session) : session_(&session) {}

    Iterator begin()
    {
        Note(Table::First(session_->Fd(), row_.Fresh()));
        return Iterator(*this);
    }
    std::default_sentinel_t end() const { return {}; }

    WalkEnd End() const { return end_; }
    uint32_t Status() const { return status_; }

private:
    void Advance()
    {
        const Key key(*row_);
        Note(Table::Next(session_->Fd(), key, row_.Fresh()));
        const Key reached(*row_);
        if (status_ == RSVP_MOR_OK && std::memcmp(&key, &reached, sizeof(Key)) == 0)
            end_ = WalkEnd::Stuck;
    }

    // The library reserves no status for the end of a table. This one is the simulated daemon's.
    void Note(uint32_t status)
    {
        status_ = status;
        if (status != RSVP_MOR_OK)
            end_ = status == RSVP_MOR_ERR_NOT_EXIST ? WalkEnd::Complete : WalkEnd::Broken;
    }

    const Session *session_;
    Row row_;
    uint32_t status_ = RSVP_MOR_OK;
    WalkEnd end_ = WalkEnd::None;
};

/** The lists of a record as ranges. */
inline std::span<const RSVP_MOR_HopEntry> Entries(const RSVP_MOR_HopList &list)
{
    return {list.entries, list.count};
}

inline std::span<const RSVP_MOR_RouteEntry> Entries(const RSVP_MOR_RouteList &list)
{
    return {list.entries, list.count};
}

} // namespace rsvp_mor

#endif
