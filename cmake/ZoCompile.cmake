# How every target of this project is compiled. Flags never reach a user of the package.

# Visual C++ keeps symbols apart from programs, so every configuration has them; /DEBUG alone would keep what nobody calls.
if(MSVC)
  set(CMAKE_MSVC_DEBUG_INFORMATION_FORMAT Embedded)
  add_link_options(/DEBUG $<$<NOT:$<CONFIG:Debug>>:/OPT:REF,ICF>)
endif()

# Warnings as errors for our own code.
function(zo_compile_options target)
  if(MSVC)
    # 4251, 4275: members and base classes of exported classes are not exported, since DLL and clients share the C++
    # runtime. 4996: the C runtime would have its own replacements for standard functions.
    target_compile_options(${target} PRIVATE /W4 /WX /wd4251 /wd4275 /wd4996 /utf-8 /permissive- /Zc:__cplusplus
                                             /bigobj)
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

include(ZoStrip)

# zo_strip_installed(TARGET COMPONENT): what install(TARGETS) puts into the package loses its symbols; their file belongs
# to the component `symbols`.
function(zo_strip_installed target component)
  if(MSVC)
    return()
  endif()
  set(folder "\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}")
  set(symbols "${PROJECT_BINARY_DIR}/generated/symbols/$<CONFIG>/$<TARGET_FILE_NAME:${target}>.debug")
  set(take "include(${PROJECT_SOURCE_DIR}/cmake/ZoStrip.cmake)
  zo_take_symbols(${CMAKE_OBJCOPY} \"$<TARGET_FILE:${target}>\" \"${symbols}\")")
  install(CODE "${take}
  file(COPY \"${symbols}\" DESTINATION \"${folder}\")" COMPONENT symbols)
  install(CODE "${take}
  zo_strip(${CMAKE_OBJCOPY} \"${folder}/$<TARGET_FILE_NAME:${target}>\" \"${symbols}\")" COMPONENT ${component})
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
      zo_take_symbols(${CMAKE_OBJCOPY} ${dll} ${file}.debug)
      zo_strip(${CMAKE_OBJCOPY} ${file} ${file}.debug)
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
  set(zo_debug_file_name ${zo_file_name})
  if(type STREQUAL SHARED_LIBRARY)
    set(zo_file_type VFT_DLL)
    set(zo_file_name ${target}.dll)
    set(zo_debug_file_name ${target}d.dll)
  endif()
  configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in ${PROJECT_BINARY_DIR}/generated/${target}.rc @ONLY)
  target_sources(${target} PRIVATE ${PROJECT_BINARY_DIR}/generated/${target}.rc)
  set_source_files_properties(${PROJECT_BINARY_DIR}/generated/${target}.rc PROPERTIES
                              COMPILE_DEFINITIONS $<$<CONFIG:Debug>:ZO_DEBUG_NAMES>)
endfunction()

# zo_host_headers(TARGET HEADER...): header-only packages of the building machine, from where CMAKE_PREFIX_PATH or a
# package manager's toolchain file leads, or from the folder that ZO_PACKAGE_INCLUDE_DIR names (ZO_CLI_INCLUDE_DIR for
# CLI/CLI.hpp). Debian's folder of headers also holds those of the machine's own C library, which must stay out: of it a
# link is taken to the package alone.
function(zo_host_headers target)
  foreach(header ${ARGN})
    cmake_path(GET header PARENT_PATH package)
    string(TOUPPER ZO_${package}_INCLUDE_DIR variable)
    find_path(${variable} ${header} NO_CMAKE_FIND_ROOT_PATH PATHS /usr/include PATH_SUFFIXES eigen3
              DOC "The folder that holds ${header}")
    set(folder "${${variable}}")
    if(NOT EXISTS ${folder}/${header})
      message(FATAL_ERROR "${header} is missing: install it, and let CMAKE_PREFIX_PATH or ${variable} say where")
    endif()
    if(folder MATCHES "^/usr/")
      file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/host-headers)
      file(CREATE_LINK ${folder}/${package} ${CMAKE_BINARY_DIR}/host-headers/${package} SYMBOLIC)
      set(folder ${CMAKE_BINARY_DIR}/host-headers)
    endif()
    target_include_directories(${target} SYSTEM PRIVATE ${folder})
  endforeach()
endfunction()
