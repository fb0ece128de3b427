# The library and its tools once more, by clang: syntax and warnings only; and the slots of virtual functions, and the mark
# of the runtime, under Visual C++'s rules, which clang knows.
find_program(ZO_CLANG clang++-19)
find_program(ZO_PYTHON python3)
if(ZO_CLANG AND ZO_PYTHON AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  add_test(NAME second_compiler.ClangTakesEverySourceWithoutAWarning
           COMMAND ${ZO_PYTHON} ${CMAKE_CURRENT_SOURCE_DIR}/second_compiler.py ${ZO_CLANG} ${PROJECT_BINARY_DIR}
                   ${PROJECT_SOURCE_DIR})
  set_tests_properties(second_compiler.ClangTakesEverySourceWithoutAWarning PROPERTIES TIMEOUT 1500 PROCESSORS 2)
  add_test(NAME second_compiler.SlotsAreTheSameUnderVisualCppsRules
           COMMAND ${ZO_PYTHON} ${CMAKE_CURRENT_SOURCE_DIR}/slots/check.py ${ZO_CLANG} ${CMAKE_CXX_COMPILER}
                   ${CMAKE_CURRENT_SOURCE_DIR}/slots/classes.cpp ${PROJECT_SOURCE_DIR}/include
                   ${PROJECT_BINARY_DIR}/generated)
  # For this machine, since only its own libc++ has std::format; it is compiled, not run.
  add_test(NAME second_compiler.ClangTakesStdFormat
           COMMAND ${ZO_CLANG} -stdlib=libc++ -std=c++20 -fshort-wchar -Wall -Wextra -Werror -fsyntax-only
                   -I${PROJECT_SOURCE_DIR}/include -I${PROJECT_BINARY_DIR}/generated
                   ${CMAKE_CURRENT_SOURCE_DIR}/format/uses.cpp)
  find_program(ZO_LLD_LINK lld-link-19)
  if(ZO_LLD_LINK)
    add_test(NAME second_compiler.ClientsOfAnotherRuntimeDoNotLink
             COMMAND ${ZO_PYTHON} ${CMAKE_CURRENT_SOURCE_DIR}/runtimes/check.py ${ZO_CLANG} ${ZO_LLD_LINK}
                     ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src/platform/cpp_runtime.cpp
                     ${CMAKE_CURRENT_BINARY_DIR}/runtimes)
  endif()
else()
  message(STATUS "No second compiler is tried: clang++-19 is missing (scripts/setup test)")
endif()
