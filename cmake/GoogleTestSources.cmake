# GoogleTest as GTest::gtest and GTest::gmock_main. Each build compiles it from the sources
# of Debian's googletest package with its own flags, also the sanitized and the
# cross-built ones.
add_library(googletest_sources STATIC
    /usr/src/googletest/googletest/src/gtest-all.cc
    /usr/src/googletest/googlemock/src/gmock-all.cc)
target_include_directories(googletest_sources SYSTEM PUBLIC
    /usr/src/googletest/googletest/include /usr/src/googletest/googlemock/include)
target_include_directories(googletest_sources SYSTEM PRIVATE
    /usr/src/googletest/googletest /usr/src/googletest/googlemock)
target_compile_options(googletest_sources PRIVATE -w)
add_library(googletest_main STATIC /usr/src/googletest/googlemock/src/gmock_main.cc)
target_link_libraries(googletest_main PUBLIC googletest_sources)
add_library(GTest::gtest ALIAS googletest_sources)
add_library(GTest::gmock_main ALIAS googletest_main)
if(CORVANE_SANITIZE)
  target_compile_options(googletest_sources PUBLIC -fsanitize=${CORVANE_SANITIZE})
endif()
if(WIN32)
  target_link_options(googletest_sources PUBLIC -static)
endif()
