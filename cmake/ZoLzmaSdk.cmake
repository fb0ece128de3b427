# The LZMA SDK: encoder, decoder and CRC-32, compiled for one thread (Z7_ST), from the sources that scripts/setup
# fetched or from another copy. Gives the target zo_lzma.
set(ZO_LZMA_SDK_DIR "" CACHE PATH "The folder that holds the LZMA SDK's folder C; empty for the one of scripts/setup")
set(sdk ${ZO_LZMA_SDK_DIR})
if(NOT sdk)
  set(sdk ${ZO_DEPS_DIR}/7zip)
endif()
if(NOT EXISTS ${sdk}/C/LzmaEnc.h)
  message(FATAL_ERROR "The LZMA SDK is missing in ${sdk}: run scripts/setup build, or set ZO_LZMA_SDK_DIR")
endif()

set(sources)
foreach(name LzmaEnc LzmaDec LzFind LzFindOpt 7zCrc 7zCrcOpt CpuArch)
  if(EXISTS ${sdk}/C/${name}.c)  # which files there are differs between its versions
    list(APPEND sources ${sdk}/C/${name}.c)
  endif()
endforeach()
add_library(zo_lzma STATIC ${sources})
target_include_directories(zo_lzma SYSTEM PUBLIC ${sdk}/C)
target_compile_definitions(zo_lzma PRIVATE Z7_ST _7ZIP_ST)
if(NOT MSVC)
  target_compile_options(zo_lzma PRIVATE $<$<CONFIG:Debug>:-O2>)  # it is not ours to debug, and tests wait for it
endif()
