# snmphost-wine: the host as a winelib program, Linux and Windows process at
# once. The sources that face the contract are compiled with wineg++; the rest
# are the native objects. corvane_core stays out of the link: its SNMP utility
# functions have the names of the Windows library's, with another calling
# convention.

# Windows' characters are char16_t then, and wchar_t is the standard library's.
set(winelib_flags -std=c++20 -fPIC -O2 -g -fno-short-wchar
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
    -Woverloaded-virtual -Wimplicit-fallthrough -Wformat=2 -Werror
    -ffile-prefix-map=${CMAKE_SOURCE_DIR}/=)
set(winelib_folder "${CMAKE_CURRENT_BINARY_DIR}/winelib")
file(MAKE_DIRECTORY "${winelib_folder}")

set(winelib_objects)
foreach(source ContractModule.cpp winelib/DllLibrary.cpp winelib/WideText.cpp
        winelib/WindowsRegistry.cpp)
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

add_library(host_native_objects OBJECT
    Main.cpp
    "${CMAKE_SOURCE_DIR}/platform/linux/Clock.cpp"
    "${CMAKE_SOURCE_DIR}/platform/linux/PresentQuarter.cpp"
    "${CMAKE_SOURCE_DIR}/platform/linux/Threading.cpp")
target_include_directories(host_native_objects PRIVATE
    "${CMAKE_SOURCE_DIR}" "${CMAKE_BINARY_DIR}/generated")
target_link_libraries(host_native_objects PRIVATE corvane_options)

# wineg++ makes a small start script of this name, and the program beside it
# with ".so" appended.
set(winelib_program "${CMAKE_BINARY_DIR}/snmphost-wine.exe")
add_custom_command(
    OUTPUT "${winelib_program}" "${winelib_program}.so"
    COMMAND "${WINEGXX}" -mconsole -o "${winelib_program}" ${winelib_objects}
            "$<TARGET_OBJECTS:host_native_objects>" "$<TARGET_OBJECTS:host_front>"
            -lsnmpapi ${NETSNMP_AGENT_LIBRARY} ${NETSNMP_LIBRARY}
    DEPENDS ${winelib_objects} $<TARGET_OBJECTS:host_native_objects> $<TARGET_OBJECTS:host_front>
    COMMENT "Linking snmphost-wine with wineg++"
    COMMAND_EXPAND_LISTS VERBATIM)
add_custom_target(snmphost-wine ALL DEPENDS "${winelib_program}")
