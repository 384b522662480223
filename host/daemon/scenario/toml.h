// The one place that includes the TOML parser. The parser asserts some of what it has not checked in its input, and
// where assertions are off it would go on in spite of it. Here such an input is refused like any other.
#ifndef HOST_DAEMON_SCENARIO_TOML_H
#define HOST_DAEMON_SCENARIO_TOML_H

#include <exception>

namespace rsvpsimd {

// The parser was surprised by its input.
struct TomlSurprise : std::exception {};

[[noreturn]] inline void RefuseToml()
{
    throw TomlSurprise();
}

} // namespace rsvpsimd

#pragma push_macro("NDEBUG")
#undef NDEBUG
#define TOML_ASSERT(expression) (static_cast<bool>(expression) ? void() : rsvpsimd::RefuseToml())
#include <toml++/toml.h>
#pragma pop_macro("NDEBUG")

#endif
