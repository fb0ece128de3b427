# Builds the checkout that this port lies in, as an overlay port:
#   vcpkg install zo-com --overlay-ports=CHECKOUT/ports
# The sources of the LZMA SDK and of PCRE2 are compiled in and come from folders of yours, named by the environment
# variables ZO_LZMA_SDK_DIR and ZO_PCRE2_DIR (with VCPKG_KEEP_ENV_VARS, which lets them through).
#
# Never tried: there was no machine with this package manager.
vcpkg_check_linkage(ONLY_DYNAMIC_LIBRARY)
foreach(name ZO_LZMA_SDK_DIR ZO_PCRE2_DIR)
  if("$ENV{${name}}" STREQUAL "")
    message(FATAL_ERROR "Set the environment variable ${name}, and name it in VCPKG_KEEP_ENV_VARS")
  endif()
endforeach()

get_filename_component(SOURCE_PATH "${CMAKE_CURRENT_LIST_DIR}/../.." ABSOLUTE)
vcpkg_cmake_configure(SOURCE_PATH "${SOURCE_PATH}"
                      OPTIONS -DBUILD_TESTING=OFF "-DZO_LZMA_SDK_DIR=$ENV{ZO_LZMA_SDK_DIR}"
                              "-DZO_PCRE2_DIR=$ENV{ZO_PCRE2_DIR}")
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(PACKAGE_NAME ZoCom CONFIG_PATH lib/cmake/ZoCom)
vcpkg_copy_pdbs()
vcpkg_copy_tools(TOOL_NAMES zolib zomsg zoval AUTO_CLEAN)
# Beside the DLL that was copied with the tools, which looks for them there.
file(COPY "${CURRENT_PACKAGES_DIR}/share/zo_com/messages" DESTINATION "${CURRENT_PACKAGES_DIR}/tools/${PORT}")
file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include" "${CURRENT_PACKAGES_DIR}/debug/share")
vcpkg_install_copyright(FILE_LIST "${SOURCE_PATH}/NOTICE.md")
