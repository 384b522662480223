// The text of a TOML file, a scenario's or a dictionary's, as a tree that knows its line numbers, so that only one
// source deals with the TOML parser.
#ifndef TOML_DOCUMENT_H
#define TOML_DOCUMENT_H

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace rsvp_toml {

struct Member;

struct Node {
    using Array = std::vector<Node>;
    using Table = std::vector<Member>; // by name
    struct Other {};                   // a date or a time

    template <typename Wanted> const Wanted *As() const { return std::get_if<Wanted>(&value); }

    size_t line = 0;
    std::variant<Other, bool, int64_t, double, std::string, Array, Table> value;
};

struct Member {
    std::string name;
    size_t line = 0; // of the name
    Node node;
};

// What is wrong with a file, and on which line (0 if unknown).
class Mistake : public std::runtime_error {
public:
    Mistake(size_t line, const std::string &what) : std::runtime_error(what), line_(line) {}
    size_t Line() const { return line_; }

private:
    size_t line_;
};

[[noreturn]] void Refuse(size_t line, std::string_view key, std::string_view problem);

// Throws Mistake for what is not plain text or not TOML.
Node ParseDocument(std::string_view text);

// A whole number from 0 to `most`; throws Mistake for anything else.
uint64_t NumberIn(const Member &member, uint64_t most);

} // namespace rsvp_toml

#endif
