# Wrong use that must not compile: each line marked so in must_not_compile/*.cpp, one file per family.
find_program(ZO_PYTHON python3)
file(GLOB wrong_uses CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/must_not_compile/*.cpp)
if(ZO_PYTHON AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  foreach(source ${wrong_uses})
    cmake_path(GET source STEM name)
    add_test(NAME must_not_compile.${name}
             COMMAND ${ZO_PYTHON} ${CMAKE_CURRENT_SOURCE_DIR}/must_not_compile/check.py ${source}
                     ${CMAKE_CXX_COMPILER} -std=c++20 -Wall -Wextra -Werror -I${PROJECT_SOURCE_DIR}/include
                     -I${PROJECT_BINARY_DIR}/generated)
  endforeach()
else()
  message(STATUS "Wrong use is not tried: that needs GCC and Python")
endif()
