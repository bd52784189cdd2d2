# What `cmake --install` and the Debian package (`cpack`) contain: the programs for Linux,
# the module, the manual pages, the MIB, and a systemd unit for snmphost. The prefix is
# /usr, because that is where Debian looks for them.
if(CMAKE_INSTALL_PREFIX_INITIALIZED_TO_DEFAULT)
  set_property(CACHE CMAKE_INSTALL_PREFIX PROPERTY VALUE /usr)
endif()
if(NOT TARGET snmphost)
  message(STATUS "nothing is installed: snmphost is not built")
  return()
endif()

set(module_folder lib/corvane-snmp)
set(documents share/doc/corvane-snmp)
set(programs snmphost corvane-sim mib-names)
install(TARGETS ${programs} RUNTIME DESTINATION bin)
install(TARGETS SNMPd LIBRARY DESTINATION ${module_folder})
install(FILES mibs/VELTRIN-CORVANE-MIB.txt DESTINATION share/snmp/mibs)
install(FILES docs/operating.md DESTINATION ${documents})
configure_file(host/debian/snmphost.service.in generated/snmphost.service @ONLY)
install(FILES "${CMAKE_BINARY_DIR}/generated/snmphost.service" DESTINATION lib/systemd/system)

# The manual pages are the texts of --help.
find_program(HELP2MAN help2man)
set(purpose_snmphost "loads an SNMP extension agent and answers managers")
set(purpose_corvane-sim "simulates a Corvane server for its SNMP agent")
set(purpose_mib-names "prints the names of the variables and traps of the Corvane SNMP agent")
set(pages)
foreach(program ${programs})
  set(page "${CMAKE_BINARY_DIR}/man/${program}.1")
  add_custom_command(
      OUTPUT "${page}" "${page}.gz"
      COMMAND "${CMAKE_COMMAND}" -E make_directory "${CMAKE_BINARY_DIR}/man"
      COMMAND "${HELP2MAN}" --no-info "--name=${purpose_${program}}" --output=${page}
              $<TARGET_FILE:${program}>
      COMMAND gzip -9nkf "${page}"
      DEPENDS ${program} VERBATIM)
  list(APPEND pages "${page}.gz")
endforeach()
set(changes "${CMAKE_BINARY_DIR}/man/changelog.gz")
add_custom_command(OUTPUT "${changes}"
    COMMAND gzip -9nc "${CMAKE_SOURCE_DIR}/CHANGELOG.md" > "${changes}"
    DEPENDS "${CMAKE_SOURCE_DIR}/CHANGELOG.md" ${pages} VERBATIM)
if(HELP2MAN)
  add_custom_target(manual_pages ALL DEPENDS "${changes}")
  install(FILES "${changes}" DESTINATION ${documents})
  install(FILES ${pages} DESTINATION share/man/man1)
else()
  message(STATUS "the manual pages are not built: help2man is missing")
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME corvane-snmp)
set(CPACK_PACKAGE_VENDOR "Veltrin Systems")
set(CPACK_PACKAGING_INSTALL_PREFIX "${CMAKE_INSTALL_PREFIX}")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Veltrin Systems <support@veltrin.example>")
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "SNMP agent of the Corvane streaming-audio server, for tests")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "The module SNMPd.so, the program snmphost, which loads it and answers SNMP
managers, and corvane-sim, which takes the place of a Corvane server.")
install(FILES host/debian/copyright DESTINATION ${documents})
include(CPack)
