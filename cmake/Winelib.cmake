# snmphost-wine: the host as a winelib program, which is a Linux process and a
# Windows process at once. wineg++ compiles the sources that call the contract;
# the rest are native objects. The link must not contain corvane_core: its SNMP
# utility functions have the names of the Windows library's functions, but another
# calling convention.

# With -fno-short-wchar, Windows' characters are char16_t, and wchar_t is the
# standard library's. All paths are relative, because wineg++ splits an argument at its
# blanks, and the path of the project may have some. They begin in this room's build folder,
# because CMake reads the compiler's list of headers from there.
file(RELATIVE_PATH to_sources "${CMAKE_CURRENT_BINARY_DIR}" "${CMAKE_SOURCE_DIR}")
file(RELATIVE_PATH to_host "${CMAKE_CURRENT_BINARY_DIR}" "${CMAKE_CURRENT_SOURCE_DIR}")
set(winelib_flags -std=c++20 -fPIC -O2 -g -fno-short-wchar
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
    -Woverloaded-virtual -Wimplicit-fallthrough -Wformat=2 -Werror
    -ffile-prefix-map=${to_sources}=)
file(MAKE_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}/winelib")

set(winelib_objects)
set(winelib_outputs)
foreach(source ContractModule.cpp winelib/WindowsSystem.cpp)
  get_filename_component(name "${source}" NAME_WE)
  set(object "winelib/${name}.o")
  add_custom_command(
      OUTPUT "${CMAKE_CURRENT_BINARY_DIR}/${object}"
      COMMAND "${WINEGXX}" ${winelib_flags} -I "${to_sources}"
              -MMD -MT "${object}" -MF "${object}.d" -c "${to_host}/${source}" -o "${object}"
      WORKING_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}"
      DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${source}"
      DEPFILE "${CMAKE_CURRENT_BINARY_DIR}/${object}.d"
      COMMENT "Compiling ${source} with wineg++"
      VERBATIM)
  list(APPEND winelib_objects "host/${object}")
  list(APPEND winelib_outputs "${CMAKE_CURRENT_BINARY_DIR}/${object}")
endforeach()

# The native objects, in a file whose relative path is known.
add_library(host_native STATIC Main.cpp $<TARGET_OBJECTS:host_front>)
target_link_libraries(host_native PRIVATE platform_threading)

# wineg++ makes a small start script with this name, and beside it the program,
# with ".so" appended.
set(winelib_program "${CMAKE_BINARY_DIR}/snmphost-wine.exe")
add_custom_command(
    OUTPUT "${winelib_program}" "${winelib_program}.so"
    COMMAND "${WINEGXX}" -mconsole -o snmphost-wine.exe ${winelib_objects} host/libhost_native.a
            -lsnmpapi ${NETSNMP_AGENT_LIBRARY} ${NETSNMP_LIBRARY}
    WORKING_DIRECTORY "${CMAKE_BINARY_DIR}"
    DEPENDS ${winelib_outputs} host_native
    COMMENT "Linking snmphost-wine with wineg++"
    VERBATIM)
add_custom_target(snmphost-wine ALL DEPENDS "${winelib_program}")
