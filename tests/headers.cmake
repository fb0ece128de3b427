# Each public header compiles alone, twice, and leaves no macro of the platform behind; all together compile before
# windows.h and after it, with all of its macros, and with those of the Windows SDK that mingw's lacks for C++. One file
# per header is generated; building them is the test.
file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/include/*.h)
set(generated ${CMAKE_CURRENT_BINARY_DIR}/headers)
set(alone)
set(all)
foreach(header ${headers})
  string(MAKE_C_IDENTIFIER ${header} id)
  file(CONFIGURE OUTPUT ${generated}/${id}.cpp
       CONTENT "#include <${header}>\n#include <${header}>\n#include \"no_macros.h\"\n")
  list(APPEND alone ${generated}/${id}.cpp)
  string(APPEND all "#include <${header}>\n")
endforeach()
file(CONFIGURE OUTPUT ${generated}/before_windows.cpp CONTENT "${all}#include <windows.h>\n")
file(CONFIGURE OUTPUT ${generated}/after_windows.cpp CONTENT "#include <windows.h>\n${all}")
# The standard library's own headers come first: GCC's, unlike Visual C++'s, do not bear the macros.
file(CONFIGURE OUTPUT ${generated}/with_min_and_max.cpp
     CONTENT "#include <bits/stdc++.h>\n#include <windows.h>\n#define min(a, b) (((a) < (b)) ? (a) : (b))\n\
#define max(a, b) (((a) > (b)) ? (a) : (b))\n${all}")
set(together ${generated}/before_windows.cpp ${generated}/after_windows.cpp)
if(NOT MSVC)
  list(APPEND together ${generated}/with_min_and_max.cpp)
endif()

add_library(header_tests OBJECT EXCLUDE_FROM_ALL ${alone} ${together})
target_include_directories(header_tests PRIVATE ${PROJECT_SOURCE_DIR}/include ${PROJECT_BINARY_DIR}/generated
                                                ${CMAKE_CURRENT_SOURCE_DIR}/headers)
if(NOT MSVC)
  target_compile_options(header_tests PRIVATE -O0 -Wall -Wextra -Wpedantic -Werror)
endif()
add_test(NAME headers.EachCompilesAloneBeforeAndAfterWindows
         COMMAND ${CMAKE_COMMAND} --build ${PROJECT_BINARY_DIR} --config $<CONFIG> --target header_tests)
set_tests_properties(headers.EachCompilesAloneBeforeAndAfterWindows PROPERTIES TIMEOUT 600 RUN_SERIAL ON)

# A client's compiler may read them in another code page than the one that they were written in.
add_test(NAME headers.HaveNoLettersBeyondAscii
         COMMAND ${CMAKE_COMMAND} -DFOLDER=${PROJECT_SOURCE_DIR}/include -P ${CMAKE_CURRENT_SOURCE_DIR}/headers/ascii.cmake)

# What they say to a compiler that cannot read them, ahead of all else.
if(NOT MSVC)
  add_test(NAME headers.EachRefusesAnOlderLanguage
           COMMAND ${CMAKE_COMMAND} -DCOMPILER=${CMAKE_CXX_COMPILER} -DINCLUDE=${PROJECT_SOURCE_DIR}/include
                   -P ${CMAKE_CURRENT_SOURCE_DIR}/headers/older_language.cmake)
  function(zo_refused_compiler name option text)
    add_test(NAME headers.Refuse${name}
             COMMAND ${CMAKE_CXX_COMPILER} -std=c++20 ${option} -fsyntax-only -fmax-errors=1 -x c++
                     -I${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/include/zo/strings.h)
    set_tests_properties(headers.Refuse${name} PROPERTIES PASS_REGULAR_EXPRESSION ${text})
  endfunction()
  zo_refused_compiler(OtherPlatforms -U_WIN32 "is a library for Windows")
  zo_refused_compiler(OtherStandardContainers -D_GLIBCXX_DEBUG "not _GLIBCXX_DEBUG")
endif()
