# snmphost-wine: the host as a winelib program, which is a Linux process and a
# Windows process at once. wineg++ compiles the sources that call the contract;
# the rest are native objects. The link must not contain corvane_core: its SNMP
# utility functions have the names of the Windows library's functions, but another
# calling convention.

# With -fno-short-wchar, Windows' characters are char16_t, and wchar_t is the
# standard library's.
set(winelib_flags -std=c++20 -fPIC -O2 -g -fno-short-wchar
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
    -Woverloaded-virtual -Wimplicit-fallthrough -Wformat=2 -Werror
    -ffile-prefix-map=${CMAKE_SOURCE_DIR}/=)
set(winelib_folder "${CMAKE_CURRENT_BINARY_DIR}/winelib")
file(MAKE_DIRECTORY "${winelib_folder}")

set(winelib_objects)
foreach(source ContractModule.cpp winelib/WindowsSystem.cpp)
  get_filename_component(name "${source}" NAME_WE)
  set(object "${winelib_folder}/${name}.o")
  add_custom_command(
      OUTPUT "${object}"
      COMMAND "${WINEGXX}" ${winelib_flags} -I "${CMAKE_SOURCE_DIR}"
              -MMD -MT "${object}" -MF "${object}.d"
              -c "${CMAKE_CURRENT_SOURCE_DIR}/${source}" -o "${object}"
      DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${source}"
      DEPFILE "${object}.d"
      COMMENT "Compiling ${source} with wineg++"
      VERBATIM)
  list(APPEND winelib_objects "${object}")
endforeach()

add_library(host_main OBJECT Main.cpp)
target_link_libraries(host_main PRIVATE platform_threading)

# wineg++ makes a small start script with this name, and beside it the program,
# with ".so" appended.
set(winelib_program "${CMAKE_BINARY_DIR}/snmphost-wine.exe")
add_custom_command(
    OUTPUT "${winelib_program}" "${winelib_program}.so"
    COMMAND "${WINEGXX}" -mconsole -o "${winelib_program}" ${winelib_objects}
            "$<TARGET_OBJECTS:host_main>" "$<TARGET_OBJECTS:platform_threading>"
            "$<TARGET_OBJECTS:host_front>"
            -lsnmpapi ${NETSNMP_AGENT_LIBRARY} ${NETSNMP_LIBRARY}
    DEPENDS ${winelib_objects} $<TARGET_OBJECTS:host_main> $<TARGET_OBJECTS:platform_threading>
            $<TARGET_OBJECTS:host_front>
    COMMENT "Linking snmphost-wine with wineg++"
    COMMAND_EXPAND_LISTS VERBATIM)
add_custom_target(snmphost-wine ALL DEPENDS "${winelib_program}")
