# The debugger's printers against a real program, stopped under gdb.
find_program(ZO_GDB x86_64-w64-mingw32-gdb)
find_file(ZO_GDBSERVER gdbserver.exe PATHS /usr/share/win64 NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
find_program(ZO_PYTHON python3)
if(ZO_GDB AND ZO_GDBSERVER AND ZO_PYTHON)
  add_executable(debugger_sample debugger/sample.cpp)
  target_link_libraries(debugger_sample PRIVATE zo_com)
  # All types described in the program itself: the DLL of this build carries no debug information.
  target_compile_options(debugger_sample PRIVATE -O0 -g -femit-class-debug-always)
  zo_compile_options(debugger_sample)
  add_test(NAME debugger.PrintersShowValues
           COMMAND ${ZO_PYTHON} ${CMAKE_CURRENT_SOURCE_DIR}/debugger/check.py ${PROJECT_SOURCE_DIR}/scripts/wine-run
                   ${ZO_GDBSERVER} ${ZO_GDB} ${PROJECT_SOURCE_DIR}/tools/debug/zo_gdb.py $<TARGET_FILE:debugger_sample>)
  set_tests_properties(debugger.PrintersShowValues PROPERTIES TIMEOUT 300)
else()
  message(STATUS "The debugger's printers are not tested: gdb for Windows programs is missing (scripts/setup test)")
endif()
