// The only place that includes the TOML parser. The parser relies on assertions for some input that it does not
// check, and would carry on with such input where assertions are off. Here it is refused like any other bad input.
#ifndef TOML_PARSER_H
#define TOML_PARSER_H

#include <exception>

namespace rsvp_toml {

// An assertion of the parser failed.
struct TomlAssertion : std::exception {};

[[noreturn]] inline void RefuseToml()
{
    throw TomlAssertion();
}

} // namespace rsvp_toml

#pragma push_macro("NDEBUG")
#undef NDEBUG
#define TOML_ASSERT(expression) (static_cast<bool>(expression) ? void() : rsvp_toml::RefuseToml())
#include <toml++/toml.h>
#pragma pop_macro("NDEBUG")

#endif
