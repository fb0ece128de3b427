# The debugger's printers against a real program, stopped under gdb.
find_program(ZO_GDB x86_64-w64-mingw32-gdb)
find_file(ZO_GDBSERVER gdbserver.exe PATHS /usr/share/win64 NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
find_program(ZO_PYTHON python3)
if(ZO_GDB AND ZO_GDBSERVER AND ZO_PYTHON)
  # zo_debugger_test(NAME SOURCE TEST OPTION...): the program debugger_NAME, whose own debug information has to
  # describe the types: the DLL of this build carries none.
  function(zo_debugger_test name source test)
    add_executable(debugger_${name} debugger/${source})
    target_link_libraries(debugger_${name} PRIVATE zo_com)
    target_compile_options(debugger_${name} PRIVATE -O0 -g ${ARGN})
    zo_compile_options(debugger_${name})
    add_test(NAME debugger.${test}
             COMMAND ${ZO_PYTHON} ${CMAKE_CURRENT_SOURCE_DIR}/debugger/check.py ${PROJECT_SOURCE_DIR}/scripts/wine-run
                     ${ZO_GDBSERVER} ${ZO_GDB} ${PROJECT_SOURCE_DIR}/tools/debug/zo_gdb.py
                     $<TARGET_FILE:debugger_${name}>)
    set_tests_properties(debugger.${test} PROPERTIES TIMEOUT 300)
  endfunction()
  # Of the installed package: the functions that the DLL does not export have names, too.
  add_test(NAME debugger.FindsTheSymbolsOfThePackage
           COMMAND ${ZO_GDB} -batch -nx -ex "info functions foldTable" ${package}/bin/$<TARGET_FILE_NAME:zo_com>)
  set_tests_properties(debugger.FindsTheSymbolsOfThePackage PROPERTIES FIXTURES_REQUIRED package
                       PASS_REGULAR_EXPRESSION "zo::foldTable\\(\\)")
  zo_debugger_test(sample sample.cpp PrintersShowValues -femit-class-debug-always)
  zo_debugger_test(made_inside made_inside.cpp PrintersShowWhatTheLibraryMade -femit-class-debug-always)
  zo_debugger_test(bare made_inside.cpp PrintersDoWithoutDescriptions)
else()
  message(STATUS "The debugger's printers are not tested: gdb for Windows programs is missing (scripts/setup test)")
endif()
