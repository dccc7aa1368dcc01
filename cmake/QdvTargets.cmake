# The project's own target kinds, so that flags and layering are said once.

add_library(qdv_flags INTERFACE)
target_compile_options(qdv_flags INTERFACE -fno-semantic-interposition)
if(QDV_SANITIZE) # Clang warns of other things than the compiler that the warnings are kept clean for
  # Types of functions are told apart by addresses, which differ between the host and a module.
  target_compile_options(qdv_flags INTERFACE -w -fsanitize=address,undefined,fuzzer-no-link -fno-sanitize=function
    -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(qdv_flags INTERFACE -fsanitize=address,undefined)
  set(QDV_NO_UNDEFINED "") # the sanitizers' own functions are in the program
else()
  set(QDV_NO_UNDEFINED -Wl,--no-undefined) # of modules
  target_compile_options(qdv_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Werror)
endif()
target_compile_definitions(qdv_flags INTERFACE UNICODE _UNICODE)
target_include_directories(qdv_flags INTERFACE ${CMAKE_SOURCE_DIR}/support ${CMAKE_SOURCE_DIR})

# qdv_precompile(target [std|db|ed|arx|window|test]): the headers that nearly every file of a target needs, parsed once. No
# kind goes beyond what its targets link to: checks of casts ask for every class that a file knows of. With
# QDV_PRECOMPILE_HOST off all get the standard headers alone, so that an edited header rebuilds no more than what includes
# it, and a missing include shows.
function(qdv_precompiled kind)
  add_library(qdv_pch_${kind} OBJECT ${CMAKE_SOURCE_DIR}/cmake/pch.cpp)
  target_link_libraries(qdv_pch_${kind} PUBLIC qdv_flags)
  target_precompile_headers(qdv_pch_${kind} PRIVATE
    <algorithm> <array> <cmath> <cstdint> <filesystem> <functional> <map> <memory> <optional> <span> <string> <string_view>
    <unordered_map> <utility> <variant> <vector> ${ARGN})
endfunction()
qdv_precompiled(std)
if(QDV_PRECOMPILE_HOST)
  set(host ${CMAKE_SOURCE_DIR}/support/host)
  qdv_precompiled(db ${host}/db/db.h ${host}/db/dbents.h)
  qdv_precompiled(ed ${host}/db/dbents.h ${host}/ed/ed.h)
  qdv_precompiled(arx ${host}/arx.h)
  qdv_precompiled(window ${host}/arx.h <QtCore/QtCore> <QtGui/QtGui> <QtWidgets/QtWidgets>)
  target_link_libraries(qdv_pch_window PUBLIC Qt6::Widgets)
  if(QDV_TESTS)
    qdv_precompiled(test ${host}/arx.h <gtest/gtest.h>)
    target_link_libraries(qdv_pch_test PUBLIC GTest::gtest)
  endif()
endif()
function(qdv_precompile target)
  set(kind std)
  if(QDV_PRECOMPILE_HOST AND ARGC GREATER 1)
    set(kind ${ARGV1})
  endif()
  target_compile_options(${target} PRIVATE -fPIC) # executables too: the header was compiled so
  target_precompile_headers(${target} REUSE_FROM qdv_pch_${kind})
endfunction()

# qdv_host_library(area [USES area...] [LINK library...] [HEADERS kind]): host_<area> from every .cpp of the folder.
function(qdv_host_library area)
  cmake_parse_arguments(arg "" "HEADERS" "USES;LINK" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  if(NOT sources) # a folder that has only headers
    set(sources ${CMAKE_SOURCE_DIR}/cmake/pch.cpp)
  endif()
  add_library(host_${area} STATIC ${sources})
  target_link_libraries(host_${area} PUBLIC qdv_flags)
  foreach(used ${arg_USES})
    target_link_libraries(host_${area} PUBLIC host_${used})
  endforeach()
  target_link_libraries(host_${area} PUBLIC ${arg_LINK})
  qdv_precompile(host_${area} ${arg_HEADERS})
  set_property(GLOBAL APPEND PROPERTY QDV_HOST_AREAS host_${area})
endfunction()

# qdv_unit_test(name LINK library... [HEADERS kind]): test_<name> from every .cpp of the current folder.
function(qdv_unit_test name)
  cmake_parse_arguments(arg "" "HEADERS" "LINK" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_executable(test_${name} ${sources})
  target_link_libraries(test_${name} PRIVATE qdv_flags ${arg_LINK} GTest::gtest_main)
  qdv_precompile(test_${name} ${arg_HEADERS})
  gtest_discover_tests(test_${name} DISCOVERY_MODE PRE_TEST)
endfunction()

# qdv_module_part(name): the objects of one folder of the module, every .cpp of it.
function(qdv_module_part name)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  add_library(qdv_${name} OBJECT ${sources})
  target_link_libraries(qdv_${name} PRIVATE qdv_flags)
  # A library with unique symbols could never be unloaded.
  target_compile_options(qdv_${name} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
  qdv_precompile(qdv_${name} arx)
  set_property(GLOBAL APPEND PROPERTY QDV_MODULE_PARTS qdv_${name})
endfunction()

# qdv_resources(target script): compiles a resource script and puts the result into the target, where the host
# finds it between qdvResourcesBegin and qdvResourcesEnd.
find_program(QDV_RESOURCE_COMPILER NAMES x86_64-w64-mingw32-windres windres REQUIRED)
function(qdv_resources target script)
  get_filename_component(folder ${script} DIRECTORY)
  set(compiled ${CMAKE_CURRENT_BINARY_DIR}/${target}.res)
  set(holder ${CMAKE_CURRENT_BINARY_DIR}/${target}_resources.cpp)
  file(GLOB_RECURSE inputs CONFIGURE_DEPENDS ${folder}/*)
  add_custom_command(OUTPUT ${compiled}
    COMMAND ${QDV_RESOURCE_COMPILER} --preprocessor=${CMAKE_CXX_COMPILER} --preprocessor-arg=-E
      --preprocessor-arg=-xc-header --preprocessor-arg=-DRC_INVOKED -I ${CMAKE_SOURCE_DIR}/support/host/win/rc
      -I ${folder} --output-format=res ${script} ${compiled}
    DEPENDS ${inputs} ${CMAKE_SOURCE_DIR}/support/host/win/rc/winres.h
    VERBATIM)
  file(CONFIGURE OUTPUT ${holder} CONTENT [=[
// A compiled resource script.
asm(".section .rodata.qdvresources,\"a\"\n"
    ".balign 16\n"
    ".globl qdvResourcesBegin\n"
    "qdvResourcesBegin:\n"
    ".incbin \"@compiled@\"\n"
    ".globl qdvResourcesEnd\n"
    "qdvResourcesEnd:\n"
    ".byte 0\n"
    ".previous\n");
]=] @ONLY)
  set_source_files_properties(${holder} PROPERTIES OBJECT_DEPENDS ${compiled} SKIP_PRECOMPILE_HEADERS ON)
  target_sources(${target} PRIVATE ${holder})
endfunction()
