// The only place that includes the TOML parser. The parser relies on assertions for some input that it does not
// check, and would carry on with such input where assertions are off. Here it is refused like any other bad input.
#ifndef HOST_DAEMON_SCENARIO_TOML_H
#define HOST_DAEMON_SCENARIO_TOML_H

#include <exception>

namespace rsvpsimd {

// An assertion of the parser failed.
struct TomlAssertion : std::exception {};

[[noreturn]] inline void RefuseToml()
{
    throw TomlAssertion();
}

} // namespace rsvpsimd

#pragma push_macro("NDEBUG")
#undef NDEBUG
#define TOML_ASSERT(expression) (static_cast<bool>(expression) ? void() : rsvpsimd::RefuseToml())
#include <toml++/toml.h>
#pragma pop_macro("NDEBUG")

#endif
