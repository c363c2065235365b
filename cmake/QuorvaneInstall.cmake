# What hosts find the installed library by: a CMake package and pkg-config files. Both find the library from their
# own place, so that an installed tree can be moved, and name no library but ours.
include(CMakePackageConfigHelpers)

set(QUORVANE_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/Quorvane")
install(EXPORT QuorvaneTargets NAMESPACE Quorvane:: DESTINATION "${QUORVANE_CMAKE_DIR}" COMPONENT dev)
configure_package_config_file(
  "${CMAKE_CURRENT_LIST_DIR}/package/QuorvaneConfig.cmake.in" "${CMAKE_BINARY_DIR}/package/QuorvaneConfig.cmake"
  INSTALL_DESTINATION "${QUORVANE_CMAKE_DIR}" NO_SET_AND_CHECK_MACRO NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file("${CMAKE_BINARY_DIR}/package/QuorvaneConfigVersion.cmake"
                                 COMPATIBILITY SameMajorVersion)
install(FILES "${CMAKE_BINARY_DIR}/package/QuorvaneConfig.cmake"
              "${CMAKE_BINARY_DIR}/package/QuorvaneConfigVersion.cmake"
        DESTINATION "${QUORVANE_CMAKE_DIR}" COMPONENT dev)

# ${pcfiledir} is where pkg-config found the file.
set(pkg_config_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" OR IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
  message(FATAL_ERROR "CMAKE_INSTALL_LIBDIR and CMAKE_INSTALL_INCLUDEDIR must be relative to the prefix")
endif()
file(RELATIVE_PATH QUORVANE_PREFIX_FROM_PC "/${pkg_config_dir}" "/")
string(REGEX REPLACE "/$" "" QUORVANE_PREFIX_FROM_PC "${QUORVANE_PREFIX_FROM_PC}")
set(pkg_config_files quorvane)
if(TARGET quorvane_host)
  list(APPEND pkg_config_files quorvane-host)
endif()
foreach(name IN LISTS pkg_config_files)
  configure_file("${CMAKE_CURRENT_LIST_DIR}/package/${name}.pc.in" "${CMAKE_BINARY_DIR}/package/${name}.pc" @ONLY)
  install(FILES "${CMAKE_BINARY_DIR}/package/${name}.pc" DESTINATION "${pkg_config_dir}" COMPONENT dev)
endforeach()
