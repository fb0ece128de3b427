# The installed package, in components: `runtime` is what runs beside a program (DLLs, messages, notices), `symbols` what
# a debugger wants of them and of the tools, `development` what find_package(ZoCom) and compilers read, `tools` the programs,
# `documentation` the pages. cmake --install BUILD --component NAME installs one of them.
include(CMakePackageConfigHelpers)

set(zo_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ZoCom)
set(ZO_MESSAGES_DIR ${CMAKE_INSTALL_DATADIR}/zo_com/messages)  # where the message service looks, seen from the DLL
install(TARGETS zo_com EXPORT ZoComTargets RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
zo_strip_installed(zo_com runtime)
if(MSVC)
  install(FILES $<TARGET_PDB_FILE:zo_com> DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT symbols)
endif()
zo_strip_runtime_dlls(runtime symbols)
install(FILES ${runtime} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
install(FILES ${symbols} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT symbols)
install(DIRECTORY share/messages/ DESTINATION ${ZO_MESSAGES_DIR} COMPONENT runtime FILES_MATCHING PATTERN "*.msg")

# What others ask to come with programs that hold their work, and what may be done with ours.
install(FILES NOTICE.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT runtime)
install(FILES ${zo_pcre2_licence} DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME LICENCE.pcre2 COMPONENT runtime)
function(zo_install_licence package component)  # as the packages that this machine built with keep them
  if(NOT MSVC AND EXISTS /usr/share/doc/${package}/copyright)
    install(FILES /usr/share/doc/${package}/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME LICENCE.${package}
            COMPONENT ${component})
  endif()
endfunction()
zo_install_licence(gcc-mingw-w64-x86-64-posix-runtime runtime)
zo_install_licence(mingw-w64-x86-64-dev runtime)
zo_install_licence(libcli11-dev tools)
zo_install_licence(nlohmann-json3-dev tools)

# The tools with their manual pages and completions, where a shell on Linux looks for those of a command. A tree of
# several configurations gives no Debug ones, which would take the place of the others.
set(tool_configurations)
if(zo_multi_config)
  set(tool_configurations CONFIGURATIONS Release RelWithDebInfo MinSizeRel)
endif()
foreach(tool zolib zomsg zoval)
  install(TARGETS ${tool} ${tool_configurations} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
  zo_strip_installed(${tool} tools)
  install(FILES docs/${tool}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
  install(FILES tools/${tool}/completion/${tool}.bash RENAME ${tool}
          DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT tools)
endforeach()
install(DIRECTORY share/standards DESTINATION ${CMAKE_INSTALL_DATADIR}/zo_com COMPONENT runtime)

install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development FILES_MATCHING PATTERN "*.h")
install(FILES ${PROJECT_BINARY_DIR}/generated/zo/version.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zo
        COMPONENT development)
install(FILES tools/debug/zo_gdb.py tools/debug/zo_com.natvis DESTINATION ${CMAKE_INSTALL_DATADIR}/zo_com/debug
        COMPONENT development)
install(EXPORT ZoComTargets NAMESPACE ZoCom:: DESTINATION ${zo_package_dir} COMPONENT development)
list(TRANSFORM zo_runtime_dlls REPLACE ".*/" "" OUTPUT_VARIABLE zo_runtime_names)
configure_package_config_file(cmake/ZoComConfig.cmake.in generated/ZoComConfig.cmake
                              INSTALL_DESTINATION ${zo_package_dir}
                              PATH_VARS CMAKE_INSTALL_BINDIR ZO_MESSAGES_DIR)
write_basic_package_version_file(generated/ZoComConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/generated/ZoComConfig.cmake ${PROJECT_BINARY_DIR}/generated/ZoComConfigVersion.cmake
              cmake/ZoCopyRuntime.cmake cmake/mingw-w64.cmake
        DESTINATION ${zo_package_dir} COMPONENT development)

# Documents lie as they do here, for their links to one another.
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation FILES_MATCHING
        PATTERN "*.md" PATTERN "*.svg" PATTERN "*.png" PATTERN "*.1")
install(FILES README.md CHANGELOG.md CONTRIBUTING.md NOTICE.md DESTINATION ${CMAKE_INSTALL_DOCDIR}
        COMPONENT documentation)
install(FILES bench/results.md DESTINATION ${CMAKE_INSTALL_DOCDIR}/bench COMPONENT documentation)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation PATTERN build EXCLUDE)
# The reference, where scripts/reference has built it.
install(DIRECTORY build/reference/html/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/reference COMPONENT documentation OPTIONAL)
