# Adds to each package, before it is packed, what Debian wants and no other installation has: changelog and copyright
# note, and manual pages that are compressed. CPack runs this with its own variables.
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(share ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share)
  set(doc ${share}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  file(MAKE_DIRECTORY ${doc})
  foreach(file changelog copyright)
    file(COPY_FILE ${CMAKE_CURRENT_LIST_DIR}/${file} ${doc}/${file})
  endforeach()
  file(GLOB pages ${share}/man/man*/*)
  execute_process(COMMAND gzip -9 -n -f ${doc}/changelog ${pages} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
