# The client in plain C, built by another compiler against the installed package, and run.
find_program(ZO_C_CLANG clang-19)
if(ZO_C_CLANG AND CMAKE_C_COMPILER_ID STREQUAL GNU)
  set(client ${CMAKE_CURRENT_BINARY_DIR}/c_client.exe)
  add_test(NAME package.CClientBuildsWithAnotherCompiler
           COMMAND ${ZO_C_CLANG} --target=x86_64-w64-windows-gnu -std=c11 -Wall -Wextra -Wpedantic -Werror
                   -DZOC_CLIENT_PROGRAM -I${package}/include ${CMAKE_CURRENT_SOURCE_DIR}/c_interface/client.c
                   ${package}/lib/$<TARGET_LINKER_FILE_NAME:zo_com> -o ${client})
  set_tests_properties(package.CClientBuildsWithAnotherCompiler PROPERTIES FIXTURES_REQUIRED package
                       FIXTURES_SETUP c_client)
  set(library ${CMAKE_CURRENT_BINARY_DIR}/c_client.lib)  # must not be there
  add_test(NAME package.CClientLeftNothing COMMAND ${CMAKE_COMMAND} -E rm -f ${library} ${library}.txt)
  set_tests_properties(package.CClientLeftNothing PROPERTIES FIXTURES_SETUP c_client)
  add_test(NAME package.CClientRuns COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} ${client} c_client.lib)
  set_tests_properties(package.CClientRuns PROPERTIES FIXTURES_REQUIRED "package;c_client" TIMEOUT 300
                       WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR} ENVIRONMENT "WINEPATH=Z:${package}/bin")
else()
  message(STATUS "No second compiler builds the client in C: clang-19 is missing (scripts/setup test)")
endif()
