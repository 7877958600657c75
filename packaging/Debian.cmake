# The Debian packages zentrel-k4n and zentrel-k4n-dev, by CPack.
set(debian ${CMAKE_CURRENT_SOURCE_DIR}/debian)

install(TARGETS platform_com LIBRARY DESTINATION ${ZK_MODULES_DIR} COMPONENT runtime)
set(installed_modules "\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${ZK_MODULES_DIR}")
install(CODE "file(CREATE_LINK $<TARGET_FILE_NAME:zevisa64>
  \"${installed_modules}/libzevisa.so\" SYMBOLIC)" COMPONENT runtime)

# All users have it, unless they have one of their own. `zk4n measure --simulate` wants this one.
set(detector_dir "${CMAKE_INSTALL_DATADIR}/Zentrel Shared/Detectors")
install(FILES ${CMAKE_SOURCE_DIR}/data/calibr20.det DESTINATION ${detector_dir} COMPONENT runtime)
file(RELATIVE_PATH detector_file /${ZK_MODULES_DIR} "/${detector_dir}/calibr20.det")
install(CODE "file(CREATE_LINK \"${detector_file}\"
  \"${installed_modules}/calibr20.det\" SYMBOLIC)" COMPONENT runtime)

install(FILES ${debian}/zk4n.bash-completion RENAME zk4n
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT runtime)
file(GLOB man_pages ${ZK_KIT}/manual/man/man1/*.1.gz)
install(FILES ${man_pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT runtime)

install(DIRECTORY ${CMAKE_SOURCE_DIR}/platform/com/linux
  DESTINATION ${ZK_INCLUDE_DIR}/platform/com COMPONENT dev)
set(config_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ZentrelK4N)
include(CMakePackageConfigHelpers)
configure_package_config_file(cmake/ZentrelK4NConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/ZentrelK4NConfig.cmake
  INSTALL_DESTINATION ${config_dir}
  PATH_VARS ZK_MODULES_DIR ZK_INCLUDE_DIR)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/ZentrelK4NConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/ZentrelK4NConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/ZentrelK4NConfigVersion.cmake
  DESTINATION ${config_dir} COMPONENT dev)
configure_file(cmake/zentrel-k4n.pc.in ${CMAKE_CURRENT_BINARY_DIR}/zentrel-k4n.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/zentrel-k4n.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)

# What every Debian package has: whose it is, and its changes.
set(maintainer "Zentrel K4N driver <driver@zentrel.example>")
# Of SOURCE_DATE_EPOCH where that is set.
string(TIMESTAMP release_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(${debian}/changelog.in changelog @ONLY)
execute_process(COMMAND gzip -9nc ${CMAKE_CURRENT_BINARY_DIR}/changelog
  OUTPUT_FILE ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz COMMAND_ERROR_IS_FATAL ANY)
foreach(package zentrel-k4n:runtime zentrel-k4n-dev:dev)
  string(REPLACE : ";" package ${package})
  list(GET package 0 name)
  list(GET package 1 component)
  install(FILES ${debian}/copyright ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name} COMPONENT ${component})
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zentrel-k4n)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_COMPONENTS_ALL runtime dev)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${maintainer})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME zentrel-k4n)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${ZK_BIN_DIR})
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "driver for Zentrel K4N and L5S RF signal generators
The IVI-COM style driver with its COM run time, a VISA library for raw TCP
sockets, and the client zk4n, which measures, checks an installation and
simulates an instrument.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${debian}/postinst ${debian}/prerm ${debian}/postrm)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_DEV_PACKAGE_NAME zentrel-k4n-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "zentrel-k4n (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEV_DESCRIPTION "headers of the driver for Zentrel K4N and L5S
The driver's interfaces for C++, and what CMake and pkg-config need to find
them and the COM run time.")
include(CPack)
