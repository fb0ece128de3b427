# The installed package: DLL with its runtime, import library, headers, message files, and what find_package(ZoCom)
# reads; the tools with their manual pages and completions, where a shell on Linux looks for those of a command.
include(CMakePackageConfigHelpers)

set(zo_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ZoCom)
install(TARGETS zo_com EXPORT ZoComTargets RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
foreach(tool zolib zomsg zoval)
  install(TARGETS ${tool} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(FILES docs/${tool}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES tools/${tool}/completion/${tool}.bash RENAME ${tool}
          DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
endforeach()
# Where the message service looks for them, seen from the DLL.
install(DIRECTORY share/standards DESTINATION ${CMAKE_INSTALL_DATADIR}/zo_com)
install(DIRECTORY share/messages/ DESTINATION ${CMAKE_INSTALL_DATADIR}/zo_com/messages FILES_MATCHING PATTERN "*.msg")
install(FILES ${zo_runtime_dlls} DESTINATION ${CMAKE_INSTALL_BINDIR})
# What its authors ask to come with programs that hold it.
install(FILES ${zo_pcre2_licence} DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME LICENCE.pcre2)
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(FILES ${PROJECT_BINARY_DIR}/generated/zo/version.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zo)
install(EXPORT ZoComTargets NAMESPACE ZoCom:: DESTINATION ${zo_package_dir})
configure_package_config_file(cmake/ZoComConfig.cmake.in generated/ZoComConfig.cmake
                              INSTALL_DESTINATION ${zo_package_dir}
                              PATH_VARS CMAKE_INSTALL_BINDIR)
write_basic_package_version_file(generated/ZoComConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/generated/ZoComConfig.cmake ${PROJECT_BINARY_DIR}/generated/ZoComConfigVersion.cmake
        DESTINATION ${zo_package_dir})
