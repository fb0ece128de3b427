# PCRE2 for texts of 16-bit units, static, with Unicode and its just-in-time compiler, from the sources that scripts/setup
# fetched or from another copy. Gives the target zo_pcre2.
set(ZO_PCRE2_DIR "" CACHE PATH "The folder that holds PCRE2's folder src; empty for the one of scripts/setup")
set(pcre2 ${ZO_PCRE2_DIR})
if(NOT pcre2)
  set(pcre2 ${ZO_DEPS_DIR}/pcre2)
endif()
if(NOT EXISTS ${pcre2}/src/pcre2.h.generic)
  message(FATAL_ERROR "PCRE2 is missing in ${pcre2}: run scripts/setup build, or set ZO_PCRE2_DIR")
endif()
set(zo_pcre2_sources ${pcre2}/src)
set(zo_pcre2_licence ${pcre2}/LICENCE)
if(NOT EXISTS ${zo_pcre2_licence})
  set(zo_pcre2_licence ${pcre2}/LICENCE.md)
endif()

set(generated ${CMAKE_CURRENT_BINARY_DIR}/pcre2)
configure_file(${pcre2}/src/config.h.generic ${generated}/config.h COPYONLY)
configure_file(${pcre2}/src/pcre2.h.generic ${generated}/pcre2.h COPYONLY)
configure_file(${pcre2}/src/pcre2_chartables.c.dist ${generated}/pcre2_chartables.c COPYONLY)
set(sources ${generated}/pcre2_chartables.c)
foreach(name auto_possess chkdint compile compile_cgroup compile_class config context error extuni find_bracket
             jit_compile match match_data match_next newline ord2utf pattern_info script_run string_utils study substring
             tables ucd valid_utf xclass)
  if(EXISTS ${pcre2}/src/pcre2_${name}.c)  # which files there are differs between its versions
    list(APPEND sources ${pcre2}/src/pcre2_${name}.c)
  endif()
endforeach()
add_library(zo_pcre2 STATIC ${sources})
target_include_directories(zo_pcre2 SYSTEM PUBLIC ${generated} PRIVATE ${pcre2}/src)
target_compile_definitions(zo_pcre2 PUBLIC PCRE2_CODE_UNIT_WIDTH=16 PCRE2_STATIC
                                    PRIVATE HAVE_CONFIG_H SUPPORT_PCRE2_16 SUPPORT_UNICODE SUPPORT_JIT
                                            # its lock is made in a race; src/parse has one of its own
                                            SLJIT_SINGLE_THREADED=1)
if(NOT MSVC)
  target_compile_options(zo_pcre2 PRIVATE $<$<CONFIG:Debug>:-O2>)  # it is not ours to debug, and tests wait for it
endif()
