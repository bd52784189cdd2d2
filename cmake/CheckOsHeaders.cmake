# Fails if a file outside platform/ depends on an operating system: if it includes a
# header other than this project's, the C++ library's or a known library's, or if product
# code checks for which system it is compiled.
#   cmake -D TOP=<top folder> -P CheckOsHeaders.cmake
cmake_minimum_required(VERSION 3.25)

# platform/ is the only place for the rest; its tests cover both systems.
set(product json Src net messages agent simulator check host mibs)
set(folders ${product} tests benchmarks fuzz)

# Files that touch the system on purpose:
set(allowed
    "^agent/(linux|win32)/"               # the loader calls them
    "^check/win32/"                       # finds facts about a Windows machine
    "^host/(native|winelib)/"             # the side of the host that loads the module
    "^tests/platform/(linux|win32)/"      # tests of one system's side of the seam
    "^tests/(contract|host|installer)/"   # they load the module, or replace its host
    "^tests/rehearsal/win32/"            # runs test programs on a Windows machine
    "^tests/hostile/(linux|win32)/"       # between the loaded module and the system
    "^tests/support/SmallStack\\.h$"      # a stack of another size than the seam's
    "^benchmarks/Src/LogBenchmark\\.cpp$" # compares with the bare system call
    # These files check the system, but include none of its headers:
    "^agent/SnmpExtension\\.cpp$"         # how an export is declared
    "^Src/LogPrinter\\.h$")               # which names of printf formats the compiler knows

# Headers in angle brackets that are not the C++ library's. The C++ library's
# have neither a folder nor an ending.
set(libraries benchmark gmock gtest net-snmp nlohmann rapidjson sanitizer spdlog)
list(JOIN libraries "|" any_library)
set(known "<(emmintrin\\.h|(${any_library})/.*)>")

set(include "^[ \t]*#[ \t]*include[ \t]*")
set(foreign "${include}(<[^>]*[./][^>]*>|\"[^/\"]*\")")
set(system_question "^[ \t]*#.*(_WIN32|_WIN64|__MINGW|__linux|__unix|__APPLE__)")

set(found "")
set(seen 0)
foreach(folder IN LISTS folders)
  file(GLOB_RECURSE sources RELATIVE "${TOP}" "${TOP}/${folder}/*.h" "${TOP}/${folder}/*.cpp")
  foreach(source IN LISTS sources)
    math(EXPR seen "${seen} + 1")
    set(is_allowed FALSE)
    foreach(pattern IN LISTS allowed)
      if(source MATCHES "${pattern}")
        set(is_allowed TRUE)
      endif()
    endforeach()
    if(is_allowed)
      continue()
    endif()
    file(STRINGS "${TOP}/${source}" includes REGEX "${foreign}")
    foreach(line IN LISTS includes)
      if(NOT line MATCHES "${include}(${known}|\"BuildSettings\\.h\")")
        string(APPEND found "\n  ${source}: ${line}")
      endif()
    endforeach()
    if(folder IN_LIST product)
      file(STRINGS "${TOP}/${source}" questions REGEX "${system_question}")
      foreach(line IN LISTS questions)
        string(APPEND found "\n  ${source}: ${line}")
      endforeach()
    endif()
  endforeach()
endforeach()

if(seen EQUAL 0)
  message(FATAL_ERROR "No sources found under \"${TOP}\"")
endif()
if(found)
  message(FATAL_ERROR "Only platform/ may depend on an operating system:${found}")
endif()
message(STATUS "${seen} files depend on no operating system")
