# What every target of the project shares: language level, warnings, sanitizers, places of the
# outputs, staged headers for the cross build, and the way a test program is declared.
include_guard(GLOBAL)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

set(ZK_BIN_DIR ${CMAKE_BINARY_DIR}/bin)
# Programs and modules look beside themselves, wherever their folder is put, not in the build tree.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${ZK_BIN_DIR})
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${ZK_BIN_DIR})
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
# Source files that exist once for each system end in this.
if(WIN32)
  set(ZK_SYSTEM windows)
  set(CMAKE_SHARED_LIBRARY_PREFIX "")
  set(CMAKE_SHARED_MODULE_PREFIX "")
else()
  set(ZK_SYSTEM posix)
endif()

# Where things lie when they are installed, relative to the prefix: on Windows the modules beside
# the programs, where the help is looked for, too.
include(GNUInstallDirs)
if(WIN32)
  set(ZK_MODULES_DIR ${CMAKE_INSTALL_BINDIR})
  set(ZK_INCLUDE_DIR ${CMAKE_INSTALL_INCLUDEDIR})
  set(ZK_MODULES_FROM_PROGRAMS .)
else()
  set(ZK_MODULES_DIR ${CMAKE_INSTALL_LIBDIR}/zentrel-k4n)
  set(ZK_INCLUDE_DIR ${CMAKE_INSTALL_INCLUDEDIR}/zentrel-k4n)
  # Modules find each other, programs the modules, wherever the prefix is.
  file(RELATIVE_PATH ZK_MODULES_FROM_PROGRAMS /${CMAKE_INSTALL_BINDIR} /${ZK_MODULES_DIR})
  set(CMAKE_INSTALL_RPATH $ORIGIN $ORIGIN/${ZK_MODULES_FROM_PROGRAMS})
endif()

# The version, for programs and resources.
set(ZK_GENERATED_INCLUDE ${CMAKE_BINARY_DIR}/generated)
configure_file(${CMAKE_CURRENT_LIST_DIR}/Version.h.in ${ZK_GENERATED_INCLUDE}/zk_version.h @ONLY)

find_program(ZK_CCACHE ccache)
if(ZK_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${ZK_CCACHE})
  set(CMAKE_C_COMPILER_LAUNCHER ${ZK_CCACHE})
endif()

# A unity build (the sanitizers' and Windows' presets) compiles the sources of a target as one. It
# shows which names mean two things; what each source includes shows in the native build. A source
# whose file-local types are members of classes stays alone.
function(zk_compile_alone)
  set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()

find_package(Threads REQUIRED)

add_library(zk_options INTERFACE)
target_compile_options(zk_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror
  $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion>)  # as GCC understands -Wconversion
target_link_libraries(zk_options INTERFACE Threads::Threads)
if(WIN32)
  # Windows 10; wide entry points are named explicitly where they are meant.
  target_compile_definitions(zk_options INTERFACE
    WINVER=0x0A00 _WIN32_WINNT=0x0A00 WIN32_LEAN_AND_MEAN NOMINMAX)
endif()
if(ZK_SANITIZE)
  add_compile_options(-fsanitize=${ZK_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${ZK_SANITIZE})
endif()

# Header-only libraries of Debian (standalone Asio, CLI11, nlohmann/json) lie in /usr/include, which
# a cross compiler must not see as a whole: the ones in use are staged into the build tree.
add_library(zk_third_party_headers INTERFACE)
if(CMAKE_CROSSCOMPILING)
  set(ZK_STAGED_INCLUDE ${CMAKE_BINARY_DIR}/staged-include)
  foreach(item asio.hpp asio CLI nlohmann)
    if(NOT EXISTS ${ZK_STAGED_INCLUDE}/${item})
      file(COPY /usr/include/${item} DESTINATION ${ZK_STAGED_INCLUDE})
    endif()
  endforeach()
  target_include_directories(zk_third_party_headers SYSTEM INTERFACE ${ZK_STAGED_INCLUDE})
  target_link_libraries(zk_third_party_headers INTERFACE ws2_32 mswsock)
endif()
# What Asio finds depends on what a source includes before it: std::aligned_alloc, and with
# mingw-w64 POSIX threads. Every source must free as the others allocate, and know an execution
# context by the same members.
target_compile_definitions(zk_third_party_headers INTERFACE
  ASIO_STANDALONE ASIO_NO_DEPRECATED ASIO_DISABLE_STD_ALIGNED_ALLOC ASIO_HAS_PTHREADS=1)
if(ZK_SANITIZE MATCHES thread)
  # The sanitizer does not know memory fences; Asio's locks order what is shared here.
  target_compile_definitions(zk_third_party_headers INTERFACE ASIO_DISABLE_FENCED_BLOCK)
endif()

# zk_library(name SOURCES... [LIBS...]) - a static layer library. Includes are written from the top
# of the tree ("K4NHardWare/K4NManager.h"); a target sees only the layers that it links.
function(zk_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS;PRIVATE_LIBS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${ARG_LIBS} PRIVATE zk_options ${ARG_PRIVATE_LIBS})
endfunction()

# zk_exports(module list.def) - the names in the list leave the module, and no others, on both
# systems: the module's own sources are compiled with default visibility, so that the list alone
# decides. What stays inside cannot be replaced, so the compiler need not leave room for that.
function(zk_exports module list)
  cmake_path(ABSOLUTE_PATH list)
  if(WIN32)
    target_sources(${module} PRIVATE ${list})
    return()
  endif()
  file(STRINGS ${list} names REGEX "^  ")
  list(TRANSFORM names REPLACE "^  ([A-Za-z0-9_]+).*" "\\1")
  list(JOIN names ";\n    " names)
  set(version_script ${CMAKE_CURRENT_BINARY_DIR}/${module}.map)
  file(CONFIGURE OUTPUT ${version_script} CONTENT
    "{\n  global:\n    @names@;\n  local:\n    *;\n};\n" @ONLY)
  target_compile_options(${module} PRIVATE -fno-semantic-interposition)
  target_link_options(${module} PRIVATE LINKER:--version-script=${version_script})
  set_target_properties(${module} PROPERTIES CXX_VISIBILITY_PRESET default LINK_DEPENDS
    ${version_script})
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${list})
endfunction()

# zk_version_resource(module description) - what Windows tells of a file: this, and its version.
set(ZK_VERSION_RESOURCE ${CMAKE_CURRENT_LIST_DIR}/VersionResource.rc.in)
function(zk_version_resource module description)
  if(NOT WIN32)
    return()
  endif()
  get_target_property(type ${module} TYPE)
  if(type STREQUAL EXECUTABLE)
    set(kind VFT_APP)
    set(suffix .exe)
  else()
    set(kind VFT_DLL)
    set(suffix .dll)
  endif()
  set(resource ${CMAKE_CURRENT_BINARY_DIR}/${module}.rc)
  configure_file(${ZK_VERSION_RESOURCE} ${resource} @ONLY)
  target_sources(${module} PRIVATE ${resource})
  set_source_files_properties(${resource} PROPERTIES INCLUDE_DIRECTORIES ${ZK_GENERATED_INCLUDE})
endfunction()

# zk_test(name SOURCES... LIBS... [ENV NAME=VALUE...] [TIMEOUT s] [COST s]) - a GoogleTest program,
# one CTest entry; one that takes long starts first, by its cost. Test programs live in bin/tests,
# away from the modules, so that a module is found only where a test puts it.
set(ZK_TEST_DIR ${ZK_BIN_DIR}/tests)
set(ZK_TEST_PATIENCE 1 CACHE STRING
  "How many times their usual limit tests may take, below a slow emulator")
function(zk_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT;COST" "SOURCES;LIBS;ENV;DEPENDS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${ZK_TEST_DIR})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} zk_options gmock_main)
  # What is tested is optimised; optimising the tests themselves took half the time of a build. A
  # test may call something for what it does alone.
  target_compile_options(${name} PRIVATE -O0 -Wno-unused-result)
  if(ARG_DEPENDS)
    add_dependencies(${name} ${ARG_DEPENDS})
  endif()
  add_test(NAME ${name} COMMAND ${name} --gtest_brief=1 WORKING_DIRECTORY ${ZK_TEST_DIR})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 300)
  endif()
  math(EXPR ARG_TIMEOUT "${ARG_TIMEOUT} * ${ZK_TEST_PATIENCE}")
  set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT} ENVIRONMENT "${ARG_ENV}")
  if(ARG_COST)
    set_tests_properties(${name} PROPERTIES COST ${ARG_COST})
  endif()
endfunction()
