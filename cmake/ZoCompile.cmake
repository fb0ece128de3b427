# How every target of this project is compiled. Flags are set per target and never reach a user of the package.

# Warnings as errors for our own code.
function(zo_compile_options target)
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4 /WX /utf-8 /permissive-)
  else()
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Werror -Wshadow -Wconversion -Wcast-qual
                           "$<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor;-Woverloaded-virtual;-Wextra-semi>")
  endif()
  target_compile_definitions(${target} PRIVATE UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX)
  zo_guarded_options(${target})
endfunction()

# Undefined behaviour ends the program with an illegal instruction. Alignment is left out: the guarded heap ends
# every block at an inaccessible page, so blocks of odd sizes are on purpose less aligned than malloc's.
# vptr checks need a runtime that does not exist for this target.
function(zo_guarded_options target)
  if(ZO_GUARDED)
    target_compile_options(${target} PRIVATE -fsanitize=undefined -fno-sanitize=alignment,vptr
                                             -fsanitize-undefined-trap-on-error)
    target_compile_definitions(${target} PRIVATE ZO_GUARDED)
  endif()
endfunction()

# The C++ runtime is shared by DLL and programs, so that exceptions, streams and memory cross their border; its DLLs
# go beside the programs and into the package.
function(zo_find_runtime_dlls result)
  set(found)
  if(MINGW)
    foreach(name libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
      execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name} OUTPUT_VARIABLE path
                      OUTPUT_STRIP_TRAILING_WHITESPACE)
      if(NOT IS_ABSOLUTE "${path}")
        find_file(zo_runtime_${name} ${name} PATHS /usr/x86_64-w64-mingw32/lib NO_CACHE REQUIRED)
        set(path ${zo_runtime_${name}})
      endif()
      list(APPEND found ${path})
    endforeach()
  endif()
  set(${result} ${found} PARENT_SCOPE)
endfunction()

# zo_host_headers(TARGET HEADER...): header-only packages of the building machine. Their folder is linked into the
# build tree, because the folder above it holds the machine's own C library headers, which must stay out.
function(zo_host_headers target)
  foreach(header ${ARGN})
    cmake_path(GET header PARENT_PATH folder)
    find_path(found_${folder} ${header} NO_CACHE REQUIRED NO_CMAKE_FIND_ROOT_PATH PATHS /usr/include
              PATH_SUFFIXES eigen3)
    file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/host-headers)
    file(CREATE_LINK ${found_${folder}}/${folder} ${CMAKE_BINARY_DIR}/host-headers/${folder} SYMBOLIC COPY_ON_ERROR)
  endforeach()
  target_include_directories(${target} SYSTEM PRIVATE ${CMAKE_BINARY_DIR}/host-headers)
endfunction()
