# A client's view: the package is installed, found with find_package(ZoCom), built against and run, with and without
# optimisation. With several configurations in one tree, each installs its DLL into the same package, for its clients.
set(package ${PROJECT_BINARY_DIR}/package)
add_test(NAME package.Install
         COMMAND ${CMAKE_COMMAND} --install ${PROJECT_BINARY_DIR} --config $<CONFIG> --prefix ${package})
set_tests_properties(package.Install PROPERTIES FIXTURES_SETUP package FIXTURES_REQUIRED package_without_documents)
add_test(NAME package.ForgetsOldDocuments COMMAND ${CMAKE_COMMAND} -E rm -rf ${package}/share/doc)
set_tests_properties(package.ForgetsOldDocuments PROPERTIES FIXTURES_SETUP package_without_documents)

find_program(ZO_PYTHON python3)
if(ZO_PYTHON)
  add_test(NAME package.NoLinkOfADocumentLeadsNowhere
           COMMAND ${ZO_PYTHON} ${CMAKE_CURRENT_SOURCE_DIR}/links.py ${package}/share/doc/zo_com ${PROJECT_SOURCE_DIR})
  set_tests_properties(package.NoLinkOfADocumentLeadsNowhere PROPERTIES FIXTURES_REQUIRED package)
endif()

function(zo_client_test name folder)
  foreach(type Release Debug)
    set(only)
    if(zo_multi_config)
      set(only CONFIGURATIONS ${type})
    endif()
    add_test(NAME package.${name}.${type} ${only}
             COMMAND ${CMAKE_CTEST_COMMAND} -C ${type} --build-and-test ${folder} ${CMAKE_CURRENT_BINARY_DIR}/${name}-${type}
                     --build-generator ${CMAKE_GENERATOR} --build-noclean
                     --build-options -DCMAKE_PREFIX_PATH=${package} -DCMAKE_BUILD_TYPE=${type}
                                     -DCMAKE_TOOLCHAIN_FILE=${CMAKE_TOOLCHAIN_FILE}
                                     -DCMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER} ${ARGN}
                     --test-command ${CMAKE_CTEST_COMMAND} -C ${type} --output-on-failure --no-tests=error)
    set_tests_properties(package.${name}.${type} PROPERTIES FIXTURES_REQUIRED package TIMEOUT 600)
  endforeach()
endfunction()
zo_client_test(ConsumerBuildsAndRuns ${CMAKE_CURRENT_SOURCE_DIR}/consumer
               -DZO_GTEST_LIBRARY=$<TARGET_FILE:gtest> -DZO_GTEST_INCLUDE=${ZO_GOOGLETEST_DIR}/googletest/include)
zo_client_test(ExamplesBuildAndRun ${PROJECT_SOURCE_DIR}/examples)
zo_client_test(TutorialsBuildAndPrintWhatTheySay ${CMAKE_CURRENT_SOURCE_DIR}/tutorial)

# zo_refusal_test(CASE TEXT): a client that cannot use the package hears why.
function(zo_refusal_test case text)
  string(MAKE_C_IDENTIFIER ${case} name)
  add_test(NAME package.Refuses_${name}
           COMMAND ${CMAKE_COMMAND} -DCMAKE_PREFIX_PATH=${package} "-DCASE=${case}"
                   -P ${CMAKE_CURRENT_SOURCE_DIR}/consumer/refusals.cmake)
  set_tests_properties(package.Refuses_${name} PROPERTIES FIXTURES_REQUIRED package PASS_REGULAR_EXPRESSION ${text})
endfunction()
zo_refusal_test("not for Windows" "is a library for Windows")
zo_refusal_test("C++17" "needs C\\+\\+20")

# The port for a package manager states the version once more.
file(READ ${PROJECT_SOURCE_DIR}/ports/zo-com/vcpkg.json port)
string(JSON port_version GET ${port} version)
if(NOT port_version VERSION_EQUAL PROJECT_VERSION)
  message(FATAL_ERROR "ports/zo-com/vcpkg.json has another version: ${port_version}")
endif()

# Taken in by add_subdirectory: what tests/subproject asks is answered when it is configured, here for two configurations
# in one tree, as Visual Studio has them.
string(REGEX REPLACE "^Ninja$" "Ninja Multi-Config" subproject_generator ${CMAKE_GENERATOR})
add_test(NAME package.SubprojectTakesNoTestsOfOurs
         COMMAND ${CMAKE_COMMAND} -S ${CMAKE_CURRENT_SOURCE_DIR}/subproject --fresh -B ${CMAKE_CURRENT_BINARY_DIR}/subproject
                 -G "${subproject_generator}" -DCMAKE_TOOLCHAIN_FILE=${CMAKE_TOOLCHAIN_FILE} -DZO_DEPS_DIR=${ZO_DEPS_DIR})
