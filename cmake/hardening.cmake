# What every target gets so that a fault in it is harder to use, in builds that optimise: the others carry sanitizers.
# What the router's library goes without, and why, stands in bench/RESULTS.md.
include(CheckPIESupported)
check_pie_supported(LANGUAGES C CXX)

set(RSVP_MOR_HARD -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
set(RSVP_MOR_HARD_LINK -Wl,-z,now -Wl,-z,noexecstack)
if(RSVP_MOR_PLATFORM STREQUAL "router")
  # A segment that becomes read-only after loading costs up to a page.
  list(APPEND RSVP_MOR_HARD_LINK -Wl,-z,norelro)
else()
  list(APPEND RSVP_MOR_HARD -fstack-protector-strong)
  list(APPEND RSVP_MOR_HARD_LINK -Wl,-z,relro)
endif()
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|i.86)$")
  list(APPEND RSVP_MOR_HARD -fcf-protection=full)
  # The C library's start files do not say that they can do with a shadow stack, though they can.
  list(APPEND RSVP_MOR_HARD_LINK -Wl,-z,shstk)
endif()
add_compile_options("$<$<CONFIG:Release,MinSizeRel,RelWithDebInfo>:${RSVP_MOR_HARD}>")
add_link_options("$<$<CONFIG:Release,MinSizeRel,RelWithDebInfo>:${RSVP_MOR_HARD_LINK}>")

# Where the sources and the build lie changes no byte of what is built.
add_compile_options(-ffile-prefix-map=${CMAKE_SOURCE_DIR}=. -ffile-prefix-map=${CMAKE_BINARY_DIR}=build)
