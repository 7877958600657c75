# Compiles the type library, wherever widl is present: the target `typelib` and ZK_TYPELIB, its file.
find_program(ZK_WIDL x86_64-w64-mingw32-widl)
if(NOT ZK_WIDL)
  return()
endif()

set(typelib_dir ${CMAKE_BINARY_DIR}/typelib)
set(ZK_TYPELIB ${typelib_dir}/ZentrelK4NLib.tlb)
file(MAKE_DIRECTORY ${typelib_dir})

# Debian's mingw-w64 has no stdole2.tlb to import the base types from: a stand-in with its identity is compiled
# first; whoever loads our library finds the system's by that identity.
add_custom_command(OUTPUT ${typelib_dir}/stdole2.tlb
  COMMAND ${ZK_WIDL} --win64 -t -I${CMAKE_SOURCE_DIR}/server/interface -o stdole2.tlb
    ${CMAKE_SOURCE_DIR}/server/interface/StdOle.idl
  DEPENDS ${CMAKE_SOURCE_DIR}/server/interface/StdOle.idl
    ${CMAKE_SOURCE_DIR}/server/interface/Prelude.idl
  WORKING_DIRECTORY ${typelib_dir}
  VERBATIM)

# Help strings go into the library as bytes of its code page; one of them is Russian.
add_custom_command(OUTPUT ${ZK_TYPELIB}
  COMMAND iconv -f UTF-8 -t CP1251 -o ZentrelK4NLib.idl ${CMAKE_SOURCE_DIR}/server/ZentrelK4NLib.idl
  COMMAND ${ZK_WIDL} --win64 -t -L${typelib_dir} -I${CMAKE_SOURCE_DIR}/server/interface
    -o ZentrelK4NLib.tlb ZentrelK4NLib.idl
  DEPENDS ${CMAKE_SOURCE_DIR}/server/ZentrelK4NLib.idl ${typelib_dir}/stdole2.tlb
  WORKING_DIRECTORY ${typelib_dir}
  VERBATIM)
add_custom_target(typelib ALL DEPENDS ${ZK_TYPELIB})
