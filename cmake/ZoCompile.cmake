# How every target of this project is compiled. Flags are set per target and never reach a user of the package.

# Warnings as errors for our own code.
function(zo_compile_options target)
  if(MSVC)
    # 4251, 4275: members and base classes of exported classes are not exported, since DLL and clients share the C++
    # runtime. 4996: the C runtime would have its own replacements for standard functions.
    target_compile_options(${target} PRIVATE /W4 /WX /wd4251 /wd4275 /wd4996 /utf-8 /permissive- /Zc:__cplusplus)
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

# zo_strip_runtime_dlls(STRIPPED SYMBOLS): the runtime's DLLs for the package, a twelfth of their size, and their debug
# information in files of its own, which gdb finds beside them.
function(zo_strip_runtime_dlls stripped symbols)
  set(files)
  set(debug)
  foreach(dll ${zo_runtime_dlls})
    cmake_path(GET dll FILENAME name)
    set(file ${PROJECT_BINARY_DIR}/generated/runtime/${name})
    if(NOT EXISTS ${file}.debug OR ${dll} IS_NEWER_THAN ${file}.debug)
      file(COPY ${dll} DESTINATION ${PROJECT_BINARY_DIR}/generated/runtime)
      execute_process(COMMAND ${CMAKE_OBJCOPY} --only-keep-debug ${dll} ${file}.debug COMMAND_ERROR_IS_FATAL ANY)
      execute_process(COMMAND ${CMAKE_OBJCOPY} --strip-unneeded --add-gnu-debuglink=${file}.debug ${file}
                      COMMAND_ERROR_IS_FATAL ANY)
    endif()
    list(APPEND files ${file})
    list(APPEND debug ${file}.debug)
  endforeach()
  set(${stripped} ${files} PARENT_SCOPE)
  set(${symbols} ${debug} PARENT_SCOPE)
endfunction()

# zo_version_resource(TARGET DESCRIPTION): what the platform shows of a program or DLL.
function(zo_version_resource target description)
  get_target_property(type ${target} TYPE)
  set(zo_file_type VFT_APP)
  set(zo_file_name ${target}.exe)
  if(type STREQUAL SHARED_LIBRARY)
    set(zo_file_type VFT_DLL)
    set(zo_file_name ${target}.dll)
  endif()
  configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in ${PROJECT_BINARY_DIR}/generated/${target}.rc @ONLY)
  target_sources(${target} PRIVATE ${PROJECT_BINARY_DIR}/generated/${target}.rc)
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
