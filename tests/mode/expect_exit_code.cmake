# cmake -DPROGRAM=... -DCHILD=... -DCODE=... -P: fails unless PROGRAM's child CHILD ends with exactly CODE.
execute_process(COMMAND ${PROGRAM} --zo-child=${CHILD} RESULT_VARIABLE code OUTPUT_VARIABLE output
                ERROR_VARIABLE output INPUT_FILE /dev/null)
if(NOT code STREQUAL CODE)
  message(FATAL_ERROR "${CHILD} ended with ${code} instead of ${CODE}:\n${output}")
endif()
