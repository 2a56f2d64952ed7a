# What `cmake --install` puts in place: the library, its headers, the command line, and what other builds need
# to find them, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/fmdtoolkit)

install(TARGETS fmdtoolkit EXPORT fmdtoolkitTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/fmdtoolkit
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
if(TARGET fmdtool)
  # The installed program finds the library beside it, wherever the prefix is moved.
  set_target_properties(fmdtool PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
  install(TARGETS fmdtool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

install(EXPORT fmdtoolkitTargets NAMESPACE fmdtoolkit:: DESTINATION ${package_dir})
configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/fmdtoolkitConfig.cmake.in ${PROJECT_BINARY_DIR}/cmake/fmdtoolkitConfig.cmake
  INSTALL_DESTINATION ${package_dir}
  NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/cmake/fmdtoolkitConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/cmake/fmdtoolkitConfig.cmake
  ${PROJECT_BINARY_DIR}/cmake/fmdtoolkitConfigVersion.cmake
  DESTINATION ${package_dir})

# The pkg-config file names its folders relative to its own place, so that the prefix may be moved; folders
# given as absolute paths stay as they are.
function(pkgconfig_path variable dir)
  if(IS_ABSOLUTE ${dir})
    set(${variable} ${dir} PARENT_SCOPE)
  else()
    set(${variable} "\${prefix}/${dir}" PARENT_SCOPE)
  endif()
endfunction()
pkgconfig_path(pkgconfig_libdir ${CMAKE_INSTALL_LIBDIR})
pkgconfig_path(pkgconfig_includedir ${CMAKE_INSTALL_INCLUDEDIR})
if(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR})
  set(pkgconfig_prefix ${CMAKE_INSTALL_PREFIX})
else()
  file(RELATIVE_PATH pkgconfig_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
  string(REGEX REPLACE "/$" "" pkgconfig_prefix "\${pcfiledir}/${pkgconfig_prefix}")
endif()
configure_file(
  ${PROJECT_SOURCE_DIR}/cmake/fmdtoolkit.pc.in ${PROJECT_BINARY_DIR}/cmake/fmdtoolkit.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/cmake/fmdtoolkit.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
