# Toolchain file: clang in the place of Visual C++, for configuring alone. Nothing can be built by it, since neither
# libraries nor headers of that compiler are here; -DZO_CLANG names clang.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)
if(ZO_CLANG)  # CMake's own trials bring the compiler
  set(driver ${CMAKE_BINARY_DIR}/clang-cl)  # clang takes that compiler's options when it is called so
  if(NOT EXISTS ${driver})
    file(CREATE_LINK ${ZO_CLANG} ${driver} SYMBOLIC)
  endif()
  set(CMAKE_C_COMPILER ${driver})
  set(CMAKE_CXX_COMPILER ${driver})
endif()
foreach(tool LINKER RC_COMPILER MT AR)
  set(CMAKE_${tool} true)
endforeach()
foreach(language C CXX)
  set(CMAKE_${language}_COMPILER_FORCED TRUE)  # what CMake would find out needs a library
  set(CMAKE_SIZEOF_VOID_P 8)
endforeach()
set(CMAKE_CXX_COMPILE_FEATURES cxx_std_11 cxx_std_14 cxx_std_17 cxx_std_20)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
