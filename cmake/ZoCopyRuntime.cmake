# What a program needs of the library beside it. The package and a project that takes the sources in both have it.

# zo_set_runtime(DLLS MESSAGES): the DLLs of the C++ runtime and the folder of message files, for all folders of a project.
function(zo_set_runtime dlls messages)
  set_property(GLOBAL PROPERTY zo_runtime_dlls ${dlls})
  set_property(GLOBAL PROPERTY zo_messages ${messages})
endfunction()

# zo_copy_runtime(TARGET): puts the DLLs and the library's messages beside a program, after each build. Programs that lie
# in one folder need it once.
function(zo_copy_runtime target)
  get_property(dlls GLOBAL PROPERTY zo_runtime_dlls)
  get_property(messages GLOBAL PROPERTY zo_messages)
  add_custom_command(TARGET ${target} POST_BUILD VERBATIM
    COMMAND ${CMAKE_COMMAND} -E copy_if_different $<TARGET_FILE:ZoCom::zo_com> ${dlls} $<TARGET_FILE_DIR:${target}>
    COMMAND ${CMAKE_COMMAND} -E copy_directory ${messages} $<TARGET_FILE_DIR:${target}>/messages)
endfunction()
