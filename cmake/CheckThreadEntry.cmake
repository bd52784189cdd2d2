# Fails unless the entry of the agent's Windows threads ends in a jump to SetEvent. A
# call would return to code that is perhaps unmapped: the thread that waits for the event
# unloads the module.
#   cmake -D OBJDUMP=<objdump> -D PROGRAM=<program or library with its symbols>
#         -P CheckThreadEntry.cmake
execute_process(COMMAND "${OBJDUMP}" --disassemble --no-show-raw-insn --demangle "${PROGRAM}"
    OUTPUT_VARIABLE code COMMAND_ERROR_IS_FATAL ANY)

string(FIND "${code}" "ThreadMain(void*)>:" start)
if(start EQUAL -1)
  message(FATAL_ERROR "No ThreadMain in ${PROGRAM}")
endif()
string(SUBSTRING "${code}" ${start} -1 entry)
string(FIND "${entry}" "\n\n" end)
string(SUBSTRING "${entry}" 0 ${end} entry)

if(NOT entry MATCHES "jmp +\\*[^\n]*SetEvent" OR entry MATCHES "call[^\n]*SetEvent")
  message(FATAL_ERROR "ThreadMain does not end in a jump to SetEvent:\n${entry}")
endif()
