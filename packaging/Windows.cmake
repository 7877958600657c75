# Beside the modules: the second name of the VISA library, the detector file of the simulated
# instrument, and the help, which the registration of the type library says is there.
install(CODE "file(COPY_FILE \${CMAKE_INSTALL_PREFIX}/${ZK_MODULES_DIR}/zevisa64.dll
  \${CMAKE_INSTALL_PREFIX}/${ZK_MODULES_DIR}/ZeVISA.dll)" COMPONENT runtime)
install(FILES ${CMAKE_SOURCE_DIR}/data/calibr20.det DESTINATION ${ZK_MODULES_DIR} COMPONENT runtime)
install(FILES ${ZK_KIT}/manual/IviZentrelK4N.chm DESTINATION ${ZK_MODULES_DIR} COMPONENT runtime
  OPTIONAL)
install(FILES ${ZK_TYPELIB} DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev)
install(FILES ${CMAKE_SOURCE_DIR}/examples/csharp/ZentrelK4N.cs DESTINATION csharp COMPONENT dev)
