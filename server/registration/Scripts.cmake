# What the module registers itself with. The list of scripts is the one of the Windows resources.
set(registration_list ${CMAKE_CURRENT_LIST_DIR}/Registration.rc)
file(GLOB registration_files CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/*.rgs)
list(APPEND registration_files ${registration_list} ${CMAKE_CURRENT_LIST_DIR}/ZentrelK4N.ico)

if(WIN32)
  target_sources(ZentrelK4NLib PRIVATE
    Registration.cpp RegistryCopy_windows.cpp ScriptResource_windows.cpp TypeLibraryRegistration_windows.cpp)
  return()
endif()

set(script_cases)
file(STRINGS ${registration_list} entries REGEX " REGISTRY ")
foreach(entry IN LISTS entries)
  string(REGEX MATCH "^([0-9]+) REGISTRY \"(.*)\"" matched "${entry}")
  file(READ ${CMAKE_SOURCE_DIR}/${CMAKE_MATCH_2} script)
  string(APPEND script_cases "    case ${CMAKE_MATCH_1}:\n      return R\"rgs(${script})rgs\";\n")
endforeach()
configure_file(ScriptResource_posix.cpp.in ScriptResource_posix.cpp @ONLY)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${registration_files})
target_sources(ZentrelK4NLib PRIVATE
  Registration.cpp
  TypeLibraryRegistration_posix.cpp
  ${CMAKE_CURRENT_BINARY_DIR}/ScriptResource_posix.cpp)
