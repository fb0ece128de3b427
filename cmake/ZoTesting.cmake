# Test programs: each folder of suites becomes one GoogleTest program, and each test one ctest entry, so that a crash
# costs one test and the leak check speaks of one test.
include(GoogleTest)

find_path(ZO_GOOGLETEST_DIR googletest/CMakeLists.txt PATHS /usr/src/googletest NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
if(ZO_GOOGLETEST_DIR)
  set(INSTALL_GTEST OFF)
  set(BUILD_GMOCK OFF)
  set(gtest_force_shared_crt ON)
  add_subdirectory(${ZO_GOOGLETEST_DIR} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
  zo_guarded_options(gtest)
endif()

# The guarded heap watches every suite in the guarded build.
set(zo_test_environment)
if(ZO_GUARDED)
  set(zo_test_environment "ZO_GUARDED_HEAP=guard")
endif()

# zo_test_program(NAME SOURCE...): a GoogleTest program over the library's objects (white-box).
function(zo_test_program name)
  add_executable(${name} ${ARGN} $<TARGET_OBJECTS:zo_objects>)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests ${PROJECT_SOURCE_DIR}/src
                                             ${PROJECT_SOURCE_DIR}/include ${PROJECT_BINARY_DIR}/generated)
  target_compile_definitions(${name} PRIVATE ZO_COM_STATIC)
  target_link_libraries(${name} PRIVATE zo_test_support zo_system zo_host)
  zo_compile_options(${name})
  set(lock)
  if(name MATCHES "^(dialogs|system)_tests$")
    set(lock RESOURCE_LOCK keyboard)  # a window of the one would take the keys of the other
  endif()
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60 TEST_PREFIX ${name}.
                       PROPERTIES TIMEOUT 300 ${lock} ENVIRONMENT "${zo_test_environment}"
                       ENVIRONMENT_MODIFICATION ZO_OUTPUT_APART=set:1)
endfunction()
