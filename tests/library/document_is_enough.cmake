# cmake -DPROGRAM=... -DPYTHON=... -DREADER=... -DFOLDER=... -P: PROGRAM writes libraries into FOLDER, each with what it
# reads in it; a reader made from the format document must read the same.
file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})
execute_process(COMMAND ${PROGRAM} --zo-child=writeLibraries ${FOLDER} RESULT_VARIABLE code INPUT_FILE /dev/null)
if(NOT code STREQUAL 0)
  message(FATAL_ERROR "writing the libraries ended with ${code}")
endif()
execute_process(COMMAND ${PYTHON} ${READER} --compare ${FOLDER} RESULT_VARIABLE code)
if(NOT code STREQUAL 0)
  message(FATAL_ERROR "the reader ended with ${code}")
endif()

# The check itself can fail: a line too many is noticed.
file(GLOB listings ${FOLDER}/*.txt)
list(GET listings 20 listing)
file(APPEND ${listing} "another member\n")
execute_process(COMMAND ${PYTHON} ${READER} --compare ${FOLDER} RESULT_VARIABLE code ERROR_QUIET)
if(code STREQUAL 0)
  message(FATAL_ERROR "a wrong listing passes: this test shows nothing")
endif()
