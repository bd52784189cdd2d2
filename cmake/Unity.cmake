# Most of the time of a compilation goes into the headers, which all sources of a program
# include. So the compiler reads all of them as one, and the headers once. The sources of the
# module stay alone: its code is the same in every preset.
option(CORVANE_UNITY "Compile all sources of a tool or a test program together" OFF)

# corvane_unity(<target> [<files>]): the files stay alone, because they use a name for
# something else than another file does.
function(corvane_unity target)
  set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${CORVANE_UNITY} UNITY_BUILD_BATCH_SIZE 0)
endfunction()
