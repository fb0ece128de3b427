# The library and its tools once more, by clang: syntax and warnings only; and the slots of virtual functions, and the mark
# of the runtime, under Visual C++'s rules, which clang knows.
find_program(ZO_CLANG clang++-19)
find_program(ZO_PYTHON python3)
if(ZO_CLANG AND ZO_PYTHON AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  add_test(NAME second_compiler.ClangTakesEverySourceWithoutAWarning
           COMMAND ${ZO_PYTHON} ${CMAKE_CURRENT_SOURCE_DIR}/second_compiler.py ${ZO_CLANG} ${PROJECT_BINARY_DIR}
                   ${PROJECT_SOURCE_DIR})
  add_test(NAME second_compiler.ClangTakesEverySourceUnderVisualCppsRules
           COMMAND ${ZO_PYTHON} ${CMAKE_CURRENT_SOURCE_DIR}/second_compiler.py ${ZO_CLANG} ${PROJECT_BINARY_DIR}
                   ${PROJECT_SOURCE_DIR} ${CMAKE_CXX_COMPILER})
  foreach(name WithoutAWarning UnderVisualCppsRules)
    set_tests_properties(second_compiler.ClangTakesEverySource${name} PROPERTIES TIMEOUT 1500 PROCESSORS 2)
  endforeach()
  add_test(NAME second_compiler.SlotsAreTheSameUnderVisualCppsRules
           COMMAND ${ZO_PYTHON} ${CMAKE_CURRENT_SOURCE_DIR}/slots/check.py ${ZO_CLANG} ${CMAKE_CXX_COMPILER}
                   ${CMAKE_CURRENT_SOURCE_DIR}/slots/classes.cpp ${PROJECT_SOURCE_DIR}/include
                   ${PROJECT_BINARY_DIR}/generated)
  # For this machine, since only its own libc++ has std::format: without a DLL; it is compiled, not run.
  add_test(NAME second_compiler.ClangTakesStdFormat
           COMMAND ${ZO_CLANG} -stdlib=libc++ -std=c++20 -DZO_COM_STATIC -fshort-wchar -Wall -Wextra -Werror -fsyntax-only
                   -I${PROJECT_SOURCE_DIR}/include -I${PROJECT_BINARY_DIR}/generated
                   ${CMAKE_CURRENT_SOURCE_DIR}/format/uses.cpp)
  find_program(ZO_LLD_LINK lld-link-19)
  if(ZO_LLD_LINK)
    add_test(NAME second_compiler.ClientsOfAnotherRuntimeDoNotLink
             COMMAND ${ZO_PYTHON} ${CMAKE_CURRENT_SOURCE_DIR}/runtimes/check.py ${ZO_CLANG} ${ZO_LLD_LINK}
                     ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src/platform/cpp_runtime.cpp
                     ${CMAKE_CURRENT_BINARY_DIR}/runtimes)
  endif()

  # Configured as for Visual C++, with several configurations in one tree; the tests of clients are there, too.
  set(visual_cpp ${CMAKE_CURRENT_BINARY_DIR}/visual_cpp)
  add_test(NAME second_compiler.ConfiguresForVisualCpp
           COMMAND ${CMAKE_COMMAND} -S ${PROJECT_SOURCE_DIR} -B ${visual_cpp} -G "Ninja Multi-Config"
                   -DCMAKE_TOOLCHAIN_FILE=${CMAKE_CURRENT_SOURCE_DIR}/visual_cpp.cmake -DZO_CLANG=${ZO_CLANG}
                   -DZO_DEPS_DIR=${ZO_DEPS_DIR})
  add_test(NAME second_compiler.TestsHeadersAndClientsWithVisualCpp
           COMMAND ${CMAKE_CTEST_COMMAND} --test-dir ${visual_cpp} -N -C Debug)
  set_tests_properties(second_compiler.ConfiguresForVisualCpp PROPERTIES FIXTURES_SETUP visual_cpp)
  set_tests_properties(second_compiler.TestsHeadersAndClientsWithVisualCpp PROPERTIES FIXTURES_REQUIRED visual_cpp
                       PASS_REGULAR_EXPRESSION "headers.EachCompiles.*package.Install.*package.Consumer.*Debug")
else()
  message(STATUS "No second compiler is tried: clang++-19 is missing (scripts/setup test)")
endif()
