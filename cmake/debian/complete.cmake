# Adds to each package, before it is packed, what Debian wants and no other installation has: changelog and copyright
# note, and manual pages that are compressed. CPack runs this with its own variables.

# Who packs the same files another day gets the same packages: all of them are as old as the last change.
if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
  file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/changelog date LIMIT_COUNT 1 REGEX "^ -- ")
  string(REGEX REPLACE ".*>  " "" date "${date}")
  execute_process(COMMAND date --date=${date} +%s OUTPUT_VARIABLE epoch OUTPUT_STRIP_TRAILING_WHITESPACE
    COMMAND_ERROR_IS_FATAL ANY)
  set(ENV{SOURCE_DATE_EPOCH} ${epoch})
endif()

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(share ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share)
  set(doc ${share}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  file(COPY ${CMAKE_CURRENT_LIST_DIR}/changelog ${CMAKE_CURRENT_LIST_DIR}/copyright DESTINATION ${doc}
    FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
  file(GLOB pages ${share}/man/man*/*)
  execute_process(COMMAND gzip -9 -n -f ${doc}/changelog ${pages} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
