# cmake -DCOMPILER=... -DINCLUDE=FOLDER -P older_language.cmake: of every public header the first that a compiler of an
# older language says is what the library needs.
file(GLOB_RECURSE headers RELATIVE ${INCLUDE} ${INCLUDE}/zo_com.h ${INCLUDE}/zo/*.h)
list(REMOVE_ITEM headers zo/version.h)  # a number
foreach(header ${headers})
  execute_process(COMMAND ${COMPILER} -std=c++17 -fsyntax-only -fmax-errors=1 -x c++ -I${INCLUDE} ${INCLUDE}/${header}
                  ERROR_VARIABLE said)
  if(NOT said MATCHES "error: #error \"zo_com needs C\\+\\+20")
    message(SEND_ERROR "${header}: ${said}")
  endif()
endforeach()
