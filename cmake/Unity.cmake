# Most of the time of a compilation goes into the headers, which all sources of a program
# include. So the compiler reads all of them as one, and the headers once.
option(CORVANE_UNITY "Compile sources together: those of a tool, a test program, a room" OFF)

# corvane_unity(<target> [<files>]): the files stay alone, because they use a name for
# something else than another file does.
function(corvane_unity target)
  set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${CORVANE_UNITY} UNITY_BUILD_BATCH_SIZE 0)
endfunction()

# corvane_unity_by_folder(<target> [<files>]): the sources of each folder together, but for the
# files. To be called in the target's own folder, after all sources are known.
function(corvane_unity_by_folder target)
  set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${CORVANE_UNITY} UNITY_BUILD_MODE GROUP)
  get_target_property(sources ${target} SOURCES)
  list(FILTER sources EXCLUDE REGEX "^\\$<")
  foreach(source IN LISTS sources)
    cmake_path(GET source PARENT_PATH folder)
    cmake_path(GET folder FILENAME group)
    set_source_files_properties("${source}" PROPERTIES UNITY_GROUP "${group}")
  endforeach()
endfunction()
