# A client's view: the package is installed, found with find_package(ZoCom), built against and run.
set(package ${PROJECT_BINARY_DIR}/package)
set(consumer ${CMAKE_CURRENT_BINARY_DIR}/consumer)

add_test(NAME package.Install COMMAND ${CMAKE_COMMAND} --install ${PROJECT_BINARY_DIR} --prefix ${package})
add_test(NAME package.ConsumerBuildsAndRuns
         COMMAND ${CMAKE_CTEST_COMMAND} --build-and-test ${CMAKE_CURRENT_SOURCE_DIR}/consumer ${consumer}
                 --build-generator ${CMAKE_GENERATOR} --build-noclean
                 --build-options -DCMAKE_PREFIX_PATH=${package} -DCMAKE_BUILD_TYPE=Release
                                 -DCMAKE_TOOLCHAIN_FILE=${CMAKE_TOOLCHAIN_FILE}
                                 -DZO_GTEST_LIBRARY=$<TARGET_FILE:gtest>
                                 -DZO_GTEST_INCLUDE=${ZO_GOOGLETEST_DIR}/googletest/include
                                 -DCMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER}
                 --test-command ${CMAKE_CTEST_COMMAND} --output-on-failure --no-tests=error)
set_tests_properties(package.Install PROPERTIES FIXTURES_SETUP package)
set_tests_properties(package.ConsumerBuildsAndRuns PROPERTIES FIXTURES_REQUIRED package TIMEOUT 600)

add_test(NAME package.ExamplesBuildAndRun
         COMMAND ${CMAKE_CTEST_COMMAND} --build-and-test ${PROJECT_SOURCE_DIR}/examples
                 ${CMAKE_CURRENT_BINARY_DIR}/examples
                 --build-generator ${CMAKE_GENERATOR} --build-noclean
                 --build-options -DCMAKE_PREFIX_PATH=${package} -DCMAKE_BUILD_TYPE=Release
                                 -DCMAKE_TOOLCHAIN_FILE=${CMAKE_TOOLCHAIN_FILE}
                                 -DCMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER}
                 --test-command ${CMAKE_CTEST_COMMAND} --output-on-failure --no-tests=error)
set_tests_properties(package.ExamplesBuildAndRun PROPERTIES FIXTURES_REQUIRED package TIMEOUT 600)
