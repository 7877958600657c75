# Compiles the type library, wherever widl is present: the target `typelib` and ZK_TYPELIB, its
# file. The Windows module cannot do without it.
find_program(ZK_WIDL x86_64-w64-mingw32-widl)
if(NOT ZK_WIDL)
  if(WIN32)
    message(FATAL_ERROR "The type library needs x86_64-w64-mingw32-widl (Debian: mingw-w64-tools).")
  endif()
  return()
endif()

set(typelib_source ${CMAKE_SOURCE_DIR}/server/interface)
set(typelib_dir ${CMAKE_BINARY_DIR}/typelib)
set(ZK_TYPELIB ${typelib_dir}/ZentrelK4NLib.tlb)
add_custom_command(OUTPUT ${ZK_TYPELIB}
  COMMAND ${typelib_source}/compile ${typelib_dir}
  DEPENDS ${typelib_source}/compile ${typelib_source}/Prelude.idl ${typelib_source}/StdOle.idl
    ${CMAKE_SOURCE_DIR}/server/ZentrelK4NLib.idl
  VERBATIM)
add_custom_target(typelib ALL DEPENDS ${ZK_TYPELIB})
