# Symbols of a program or DLL in a file of their own, which gdb finds beside it. Also included while the package is
# installed.

# zo_take_symbols(OBJCOPY PROGRAM SYMBOLS): writes the file.
function(zo_take_symbols objcopy program symbols)
  cmake_path(GET symbols PARENT_PATH folder)
  file(MAKE_DIRECTORY ${folder})
  execute_process(COMMAND ${objcopy} --only-keep-debug ${program} ${symbols} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# zo_strip(OBJCOPY PROGRAM SYMBOLS): the program without them; it tells the name of their file.
function(zo_strip objcopy program symbols)
  execute_process(COMMAND ${objcopy} --strip-unneeded --add-gnu-debuglink=${symbols} ${program}
                  COMMAND_ERROR_IS_FATAL ANY)
endfunction()
