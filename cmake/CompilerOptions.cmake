# The interface target corvane_options holds the warnings and the hardening for every
# target of this project.
add_library(corvane_options INTERFACE)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

target_compile_options(corvane_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
    -Wnon-virtual-dtor -Woverloaded-virtual -Wimplicit-fallthrough
    -Wformat=2 -Wundef -Werror
    # Images contain no path of the machine that built them.
    -ffile-prefix-map=${CMAKE_SOURCE_DIR}/=
    -ffile-prefix-map=${CMAKE_BINARY_DIR}/=
    -fstack-protector-strong)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # At -O3, g++ 12 reports overlapping copies in std::string's own operator+ (its bug
  # 105651).
  target_compile_options(corvane_options INTERFACE -Wno-restrict)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  target_compile_options(corvane_options INTERFACE -Wthread-safety)
endif()

target_compile_definitions(corvane_options INTERFACE _GLIBCXX_ASSERTIONS)
if(CMAKE_BUILD_TYPE STREQUAL "Release" OR CMAKE_BUILD_TYPE STREQUAL "RelWithDebInfo")
  target_compile_definitions(corvane_options INTERFACE _FORTIFY_SOURCE=2)
endif()

if(WIN32)
  target_compile_definitions(corvane_options INTERFACE
      WIN32_LEAN_AND_MEAN NOMINMAX WINVER=0x0601 _WIN32_WINNT=0x0601)
  # -static: the DLL and the test programs depend only on Windows' own libraries. The
  # linker option -fstack-protector-strong adds the library that the stack protector
  # needs. Without a time stamp, two builds of one source give the same bytes.
  target_link_options(corvane_options INTERFACE
      -static -fstack-protector-strong -Wl,--no-insert-timestamp
      -Wl,--dynamicbase,--nxcompat,--high-entropy-va)
else()
  find_package(Threads REQUIRED)
  target_link_libraries(corvane_options INTERFACE Threads::Threads ${CMAKE_DL_LIBS})
endif()

# Moves the symbols of a Windows image to the file <image>.debug, to which the image links.
function(corvane_split_debug_file target)
  add_custom_command(TARGET ${target} POST_BUILD
      COMMAND ${CMAKE_OBJCOPY} --preserve-dates --only-keep-debug $<TARGET_FILE:${target}> $<TARGET_FILE_NAME:${target}>.debug
      COMMAND ${CMAKE_STRIP} --preserve-dates --strip-all $<TARGET_FILE:${target}>
      COMMAND ${CMAKE_OBJCOPY} --preserve-dates --add-gnu-debuglink=$<TARGET_FILE_NAME:${target}>.debug $<TARGET_FILE:${target}>
      WORKING_DIRECTORY $<TARGET_FILE_DIR:${target}> VERBATIM)
endfunction()

set(CORVANE_SANITIZE "" CACHE STRING "Sanitizers, as for -fsanitize=")
if(CORVANE_SANITIZE)
  target_compile_options(corvane_options INTERFACE
      -fsanitize=${CORVANE_SANITIZE} -fno-sanitize-recover=all
      -fno-omit-frame-pointer)
  target_link_options(corvane_options INTERFACE -fsanitize=${CORVANE_SANITIZE})
endif()

# Locks are checked against the order in platform/LockRank.h. Native builds only:
# the check needs a thread_local, which the DLL must not have.
option(CORVANE_CHECK_LOCK_ORDER "End the process when a thread takes locks out of order" OFF)
if(CORVANE_CHECK_LOCK_ORDER AND NOT WIN32)
  target_compile_definitions(corvane_options INTERFACE CORVANE_CHECK_LOCK_ORDER)
endif()

# Counts executed lines and branches for gcov. The counts are atomic, because threads share
# code.
option(CORVANE_COVERAGE "Count what is executed (g++)" OFF)
if(CORVANE_COVERAGE)
  target_compile_options(corvane_options INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(corvane_options INTERFACE --coverage)
endif()
