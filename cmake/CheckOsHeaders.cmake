# Fails when a header of an operating system is included where none belongs.
#   cmake -D TOP=<top folder> -P CheckOsHeaders.cmake

# What is the same on every system lies in these folders; platform/ is the one
# place for the rest, with its own tests.
set(folders json Src net messages agent simulator check host tests benchmarks fuzz)

# At the border itself:
set(allowed
    "^tests/platform/(linux|win32)/"     # one system's side of the seam
    "^tests/(contract|host|installer)/"  # load the module, or stand in for its host
    "^benchmarks/Src/LogBenchmark\\.cpp$" # its peer is the bare system call
    "^tests/hostile/(linux|win32)/"      # stands between the loaded module and the system
    "^tests/support/SmallStack\\.h$"      # the seam has one size of stack, on purpose
    "^agent/(linux|win32)/"              # what the loader calls
    "^check/win32/"                      # finds facts about a Windows machine
    "^host/winelib/")                    # the side of the host that faces Windows

set(os_headers
    # Windows
    windows winsock2? ws2tcpip mswsock mstcpip windef winbase winnt winuser shlobj shellapi objbase
    snmp mgmtapi process io direct conio winternl tlhelp32 psapi
    aclapi iphlpapi netfw sddl winsvc
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
