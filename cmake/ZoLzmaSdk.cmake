# The LZMA SDK: encoder, decoder and CRC-32, compiled for one thread (Z7_ST), from the sources that scripts/setup
# fetched or from another copy. Gives the target zo_lzma.
set(ZO_LZMA_SDK_DIR ${ZO_DEPS_DIR}/7zip CACHE PATH "The LZMA SDK: the folder that holds its folder C")
if(NOT EXISTS ${ZO_LZMA_SDK_DIR}/C/LzmaEnc.h)
  message(FATAL_ERROR "The LZMA SDK is missing in ${ZO_LZMA_SDK_DIR}: run scripts/setup build, or set ZO_LZMA_SDK_DIR")
endif()

set(zo_lzma_sources)
foreach(name LzmaEnc LzmaDec LzFind LzFindOpt 7zCrc 7zCrcOpt CpuArch)
  if(EXISTS ${ZO_LZMA_SDK_DIR}/C/${name}.c)  # which files there are differs between its versions
    list(APPEND zo_lzma_sources ${ZO_LZMA_SDK_DIR}/C/${name}.c)
  endif()
endforeach()
add_library(zo_lzma STATIC ${zo_lzma_sources})
target_include_directories(zo_lzma SYSTEM PUBLIC ${ZO_LZMA_SDK_DIR}/C)
target_compile_definitions(zo_lzma PRIVATE Z7_ST _7ZIP_ST)
if(NOT MSVC)
  target_compile_options(zo_lzma PRIVATE -O2)  # in every build: it is measured code, and not ours to debug
endif()
