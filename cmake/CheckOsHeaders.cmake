# Fails if a source includes a header of an operating system and may not do so.
#   cmake -D TOP=<top folder> -P CheckOsHeaders.cmake

# The sources in these folders are the same on every system. platform/ holds the rest.
set(folders json Src net messages agent simulator host tests benchmarks fuzz)

# The exceptions:
set(allowed
    "^tests/platform/(linux|win32)/"     # tests of one system's implementation
    "^tests/(contract|host|installer)/"  # load the module, or take the place of its host
    "^benchmarks/Src/LogBenchmark\\.cpp$" # compares the log with the bare system call
    "^tests/hostile/(linux|win32)/"      # replaces system functions for the loaded module
    "^tests/support/SmallStack\\.h$"      # platform/ has one size of stack, on purpose
    "^agent/(linux|win32)/"              # the functions that the loader calls
    "^host/winelib/")                    # the part of the host that uses Windows

set(os_headers
    # Windows
    windows winsock2? ws2tcpip mswsock mstcpip windef winbase winnt winuser shlobj shellapi objbase
    snmp mgmtapi process io direct conio winternl tlhelp32 psapi
    # Linux
    unistd fcntl dirent dlfcn netdb poll pthread sched semaphore signal spawn syslog termios
    fnmatch glob pwd grp link
    sys/[a-z_/]+ arpa/[a-z]+ netinet/[a-z_]+ net/if linux/[a-z_/]+)
list(JOIN os_headers "|" any_os_header)
set(forbidden "^[ \t]*#[ \t]*include[ \t]*[<\"](${any_os_header})\\.h[>\"]")

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
    file(STRINGS "${TOP}/${source}" hits REGEX "${forbidden}")
    foreach(hit IN LISTS hits)
      string(APPEND found "\n  ${source}: ${hit}")
    endforeach()
  endforeach()
endforeach()

if(seen EQUAL 0)
  message(FATAL_ERROR "No sources found under \"${TOP}\"")
endif()
if(found)
  message(FATAL_ERROR "Headers of an operating system outside platform/:${found}")
endif()
message(STATUS "${seen} files include no header of an operating system")
