# What an installation holds and how it is cut into Debian packages. Everything in it finds everything else by relative
# paths, so that a tree can be moved and a prefix may be any folder.
include(CMakePackageConfigHelpers)

set(RSVP_MOR_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/rsvp_mor)
set(RSVP_MOR_PKGCONFIG_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
set(RSVP_MOR_SHARE_DIR ${CMAKE_INSTALL_DATADIR}/rsvp-mor)
file(RELATIVE_PATH RSVP_MOR_BIN_TO_LIB /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
file(RELATIVE_PATH RSVP_MOR_PKGCONFIG_TO_PREFIX /prefix/${RSVP_MOR_PKGCONFIG_DIR} /prefix)

# ---- The library -------------------------------------------------------------------------------------------------

set(RSVP_MOR_SHARED rsvp_mor)
set(RSVP_MOR_STATIC rsvp_mor_static)
set(RSVP_MOR_STATIC_NEEDS ${RSVP_MOR_PLATFORM_LIBRARIES})
if(RSVP_MOR_PLATFORM STREQUAL "host")
  # Whoever links the archive must reach the stand-in as the shared library does, and wrap no socket call of his own.
  # So the archive that is installed names the stand-in's calls in place of the wrapped ones.
  set(RSVP_MOR_SHARED rsvp_mor rsvp_host)
  set(RSVP_MOR_STATIC rsvp_mor_static_host)
  set(RSVP_MOR_STATIC_NEEDS rsvp_host)
  list(TRANSFORM RSVP_HOST_WRAPS REPLACE "-Wl,--wrap=(.*)" "--redefine-sym=\\1=__wrap_\\1"
    OUTPUT_VARIABLE RSVP_HOST_RENAMES)
  add_library(rsvp_mor_static_host STATIC $<TARGET_OBJECTS:rsvp_mor_objects>)
  target_include_directories(rsvp_mor_static_host INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  set_target_properties(rsvp_mor_static_host PROPERTIES
    OUTPUT_NAME rsvp_mor
    ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_ARCHIVE_OUTPUT_DIRECTORY}/install)
  add_custom_command(TARGET rsvp_mor_static_host POST_BUILD
    COMMAND ${CMAKE_OBJCOPY} --strip-debug ${RSVP_HOST_RENAMES} $<TARGET_FILE:rsvp_mor_static_host>)
endif()
target_link_libraries(${RSVP_MOR_STATIC} INTERFACE ${RSVP_MOR_STATIC_NEEDS})
set_target_properties(${RSVP_MOR_STATIC} PROPERTIES EXPORT_NAME rsvp_mor_static)
install(TARGETS ${RSVP_MOR_SHARED} ${RSVP_MOR_STATIC} EXPORT rsvp_mor_targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)

# ---- What a program is built with --------------------------------------------------------------------------------

install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development FILES_MATCHING PATTERN "*.h")
install(EXPORT rsvp_mor_targets NAMESPACE rsvp_mor:: DESTINATION ${RSVP_MOR_CMAKE_DIR} COMPONENT development)
configure_package_config_file(cmake/rsvp_mor-config.cmake.in ${CMAKE_BINARY_DIR}/rsvp_mor-config.cmake
  INSTALL_DESTINATION ${RSVP_MOR_CMAKE_DIR} NO_SET_AND_CHECK_MACRO NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/rsvp_mor-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/rsvp_mor-config.cmake ${CMAKE_BINARY_DIR}/rsvp_mor-config-version.cmake
  DESTINATION ${RSVP_MOR_CMAKE_DIR} COMPONENT development)

set(RSVP_MOR_LIBS_PRIVATE ${RSVP_MOR_STATIC_NEEDS})
list(TRANSFORM RSVP_MOR_LIBS_PRIVATE PREPEND "-l" REGEX "^[^-/]+$")
list(JOIN RSVP_MOR_LIBS_PRIVATE " " RSVP_MOR_LIBS_PRIVATE)
configure_file(cmake/rsvp_mor.pc.in ${CMAKE_BINARY_DIR}/rsvp_mor.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/rsvp_mor.pc DESTINATION ${RSVP_MOR_PKGCONFIG_DIR} COMPONENT development)

install(FILES docs/man/librsvp_mor.3 DESTINATION ${CMAKE_INSTALL_MANDIR}/man3 COMPONENT development)
install(DIRECTORY examples docs DESTINATION ${RSVP_MOR_SHARE_DIR} COMPONENT development
  FILES_MATCHING PATTERN "*.c" PATTERN "*.hpp" PATTERN "*.md"
  PATTERN "walk.cpp" PATTERN "man" EXCLUDE PATTERN "dictionary.md" EXCLUDE PATTERN "json.md" EXCLUDE
  PATTERN "monitoring*" EXCLUDE PATTERN "python*" EXCLUDE PATTERN "snmp.md" EXCLUDE)

# ---- Programs ----------------------------------------------------------------------------------------------------

if(RSVP_MOR_PLATFORM STREQUAL "host")
  # The path of the installation is in the file from the start. CMake would otherwise pad the path of the build tree with
  # colons until the other fits in its place, and the dynamic linker reads each empty element as the current folder.
  set_target_properties(rsvp_mor rsvpctl PROPERTIES BUILD_WITH_INSTALL_RPATH ON)
  set_target_properties(rsvp_mor PROPERTIES INSTALL_RPATH "$ORIGIN")
  set_target_properties(rsvpctl PROPERTIES INSTALL_RPATH "$ORIGIN/${RSVP_MOR_BIN_TO_LIB}")
  # Both lie in the same folder: the stand-in looks for the daemon on the PATH.
  install(TARGETS rsvpctl rsvpsimd DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
  install(DIRECTORY host/scenarios host/dictionaries DESTINATION ${RSVP_MOR_SHARE_DIR} COMPONENT tools)
  # The tool knows its own words best.
  set(RSVP_MOR_COMPLETION_DIR ${CMAKE_BINARY_DIR}/completion)
  file(MAKE_DIRECTORY ${RSVP_MOR_COMPLETION_DIR})
  add_custom_command(OUTPUT ${RSVP_MOR_COMPLETION_DIR}/rsvpctl ${RSVP_MOR_COMPLETION_DIR}/_rsvpctl
    COMMAND rsvpctl completion bash > ${RSVP_MOR_COMPLETION_DIR}/rsvpctl
    COMMAND rsvpctl completion zsh > ${RSVP_MOR_COMPLETION_DIR}/_rsvpctl
    DEPENDS rsvpctl)
  add_custom_target(rsvpctl_completion ALL DEPENDS ${RSVP_MOR_COMPLETION_DIR}/rsvpctl)
  install(FILES ${RSVP_MOR_COMPLETION_DIR}/rsvpctl
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT tools)
  install(FILES ${RSVP_MOR_COMPLETION_DIR}/_rsvpctl
    DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT tools)
  # Wireshark looks for plugins in Lua beside those that are compiled, and there not below the folder of its version.
  install(FILES ${RSVP_MOR_DISSECTOR} DESTINATION ${CMAKE_INSTALL_LIBDIR}/wireshark/plugins COMPONENT tools)
  install(FILES docs/dictionary.md docs/json.md docs/monitoring.md DESTINATION ${RSVP_MOR_SHARE_DIR}/docs COMPONENT tools)
  install(DIRECTORY examples/monitoring DESTINATION ${RSVP_MOR_SHARE_DIR}/examples COMPONENT tools)
  install(DIRECTORY schema DESTINATION ${RSVP_MOR_SHARE_DIR} COMPONENT tools)
  install(FILES docs/man/rsvpctl.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
  install(FILES docs/man/rsvpsimd-scenario.5 DESTINATION ${CMAKE_INSTALL_MANDIR}/man5 COMPONENT tools)
  install(FILES docs/man/rsvpsimd.8 DESTINATION ${CMAKE_INSTALL_MANDIR}/man8 COMPONENT tools)
endif()
if(TARGET rsvp-agentx)
  set_target_properties(rsvp-agentx PROPERTIES
    BUILD_WITH_INSTALL_RPATH ON
    INSTALL_RPATH "$ORIGIN/${RSVP_MOR_BIN_TO_LIB}")
  install(TARGETS rsvp-agentx DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT agentx)
  configure_file(tools/agentx/rsvp-agentx.service.in ${CMAKE_BINARY_DIR}/rsvp-agentx.service @ONLY)
  install(FILES ${CMAKE_BINARY_DIR}/rsvp-agentx.service DESTINATION lib/systemd/system COMPONENT agentx)
  install(FILES tools/agentx/RSVP-MOR-MIB.txt DESTINATION ${CMAKE_INSTALL_DATADIR}/snmp/mibs COMPONENT agentx)
  install(FILES docs/snmp.md DESTINATION ${RSVP_MOR_SHARE_DIR}/docs COMPONENT agentx)
  install(FILES docs/man/rsvp-agentx.8 DESTINATION ${CMAKE_INSTALL_MANDIR}/man8 COMPONENT agentx)
endif()

# ---- The Python package ------------------------------------------------------------------------------------------

if(TARGET rsvp_mor_python)
  # Debian's own place, which no prefix moves: it is where its Python looks.
  install(DIRECTORY ${CMAKE_BINARY_DIR}/python/rsvp_mor ${CMAKE_BINARY_DIR}/python/rsvp_mor-${PROJECT_VERSION}.dist-info
    DESTINATION lib/python3/dist-packages COMPONENT python PATTERN "__pycache__" EXCLUDE)
  install(DIRECTORY examples/python DESTINATION ${RSVP_MOR_SHARE_DIR}/examples COMPONENT python
    FILES_MATCHING PATTERN "*.py")
  install(FILES docs/python.md DESTINATION ${RSVP_MOR_SHARE_DIR}/docs COMPONENT python)
endif()

# A program that is built against the installation has no sanitizers of its own, and no emulator runs it.
if(RSVP_MOR_TESTS AND RSVP_MOR_PLATFORM STREQUAL "host" AND CMAKE_BUILD_TYPE STREQUAL "Release"
   AND NOT CMAKE_CROSSCOMPILING)
  add_test(NAME install COMMAND ${PROJECT_SOURCE_DIR}/tests/install_test.sh ${CMAKE_BINARY_DIR})
  add_test(NAME packages COMMAND ${PROJECT_SOURCE_DIR}/tests/packages_test.sh ${CMAKE_BINARY_DIR} ${CMAKE_READELF})
  set_tests_properties(install packages PROPERTIES RESOURCE_LOCK install_manifest)
endif()

# ---- Debian packages ---------------------------------------------------------------------------------------------

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME rsvp-mor)
set(CPACK_PACKAGE_VENDOR "rsvp-mor")
set(CPACK_PACKAGE_CONTACT "rsvp-mor maintainers <rsvp-mor@example.org>") # until there is an address
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian/complete.cmake)
file(STRINGS cmake/debian/changelog RSVP_MOR_CHANGES LIMIT_COUNT 1)
if(NOT RSVP_MOR_CHANGES MATCHES "\\(${PROJECT_VERSION}\\)")
  message(FATAL_ERROR "cmake/debian/changelog does not begin with version ${PROJECT_VERSION}")
endif()
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL library development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME librsvp-mor${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION
  "The shared library: settings, status, LSP state, and the tables of the\nMPLS-TE and fast reroute MIBs.")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/debian/triggers)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_STRICT_PERMISSION ON) # not those that the file has with whoever packs

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME librsvp-mor-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
  "To build programs: C headers, link libraries, pkg-config and CMake files,\ndocuments, examples in C and C++.")

if(RSVP_MOR_PLATFORM STREQUAL "host")
  list(APPEND CPACK_COMPONENTS_ALL tools)
  set(CPACK_DEBIAN_LIBRARY_PACKAGE_SUGGESTS rsvp-mor-tools)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME rsvp-mor-tools)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION net)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} (= ${PROJECT_VERSION})")
  set(CPACK_COMPONENT_TOOLS_DESCRIPTION
    "rsvpctl, which configures and shows the daemon, and rsvpsimd, which plays\nit on a machine that has none.")
endif()

if(TARGET rsvp_mor_python)
  list(APPEND CPACK_COMPONENTS_ALL python)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-rsvp-mor)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} (= ${PROJECT_VERSION}), python3 (>= 3.11), python3-cffi-backend")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS "rsvp-mor-tools, python3-pytest")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
    ${PROJECT_SOURCE_DIR}/cmake/debian/python/postinst ${PROJECT_SOURCE_DIR}/cmake/debian/python/prerm)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_STRICT_PERMISSION ON)
  set(CPACK_COMPONENT_PYTHON_DESCRIPTION
    "For Python: tables as iterators, records as values, settings as functions,\nand simulated daemons for tests.")
endif()

if(TARGET rsvp-agentx)
  list(APPEND CPACK_COMPONENTS_ALL agentx)
  set(CPACK_DEBIAN_AGENTX_PACKAGE_NAME rsvp-mor-agentx)
  set(CPACK_DEBIAN_AGENTX_PACKAGE_SECTION net)
  set(CPACK_DEBIAN_AGENTX_PACKAGE_DEPENDS "${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} (= ${PROJECT_VERSION})")
  set(CPACK_DEBIAN_AGENTX_PACKAGE_SUGGESTS snmpd)
  set(CPACK_COMPONENT_AGENTX_DESCRIPTION
    "rsvp-agentx, which serves the tables of the daemon to SNMP as a subagent\nof a master such as snmpd.")
endif()

if(CMAKE_CROSSCOMPILING)
  # The build machine's package lists say nothing about the libraries of another processor.
  set(CPACK_DEBIAN_PACKAGE_DEPENDS libc6)
  if(RSVP_MOR_CROSS_TRIPLET STREQUAL "arm-linux-gnueabihf")
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
  else()
    string(REGEX REPLACE "-.*" "" CPACK_DEBIAN_PACKAGE_ARCHITECTURE "${RSVP_MOR_CROSS_TRIPLET}")
  endif()
else()
  set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON) # there is no such option for one package alone
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
  set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_AGENTX_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
endif()
include(CPack)

