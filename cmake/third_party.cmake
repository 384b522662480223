# Header-only libraries of the host programs. A cross compiler does not look into the build machine's include folder,
# and must not: the C library's headers of another processor lie there too. So only the libraries wanted are linked
# into a folder of the build.
set(THIRD_PARTY_INCLUDE ${CMAKE_BINARY_DIR}/third_party)
file(MAKE_DIRECTORY ${THIRD_PARTY_INCLUDE})
foreach(folder CLI fmt nlohmann toml++)
  if(NOT EXISTS /usr/include/${folder})
    message(FATAL_ERROR "/usr/include/${folder} is missing: ./build.sh installs what the build needs")
  endif()
  file(CREATE_LINK /usr/include/${folder} ${THIRD_PARTY_INCLUDE}/${folder} SYMBOLIC)
endforeach()

add_library(rsvp_mor_third_party INTERFACE)
target_include_directories(rsvp_mor_third_party SYSTEM INTERFACE ${THIRD_PARTY_INCLUDE})
target_compile_definitions(rsvp_mor_third_party INTERFACE FMT_HEADER_ONLY)
# The programs made of these libraries take most of the build's time. They wait for sockets, and run no faster for
# more of it. A debug build says for itself how it is compiled.
target_compile_options(rsvp_mor_third_party INTERFACE $<$<NOT:$<CONFIG:Debug>>:-O1>)
