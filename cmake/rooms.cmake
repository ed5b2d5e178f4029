# What nearly every file reads is read once: the standard headers and fmt for the core, and what the command line, the
# tests and the windows need beside them. A precompiled header fits those that are compiled with its options.
set(VELLUMARK_STANDARD_HEADERS <algorithm> <array> <chrono> <cmath> <cstdint> <filesystem> <fstream> <functional> <limits> <map>
                               <memory> <optional> <set> <span> <stdexcept> <string> <string_view> <unordered_map> <utility>
                               <vector> <fmt/format.h> <fmt/chrono.h>)

# The code of the tests is compiled more often than it runs; what they test is optimised as it is delivered.
set(VELLUMARK_TEST_OPTIONS -O0)

# precompiled(NAME HEADERS... [LIBRARIES LIBRARY...] [OPTIONS OPTION...]): a header for others to reuse.
function(vellumark_precompiled name)
  cmake_parse_arguments(PARSE_ARGV 1 given "" "" "LIBRARIES;OPTIONS")
  file(WRITE "${CMAKE_BINARY_DIR}/${name}.cpp.new" "// Holds the precompiled header of this name.\n")
  file(COPY_FILE "${CMAKE_BINARY_DIR}/${name}.cpp.new" "${CMAKE_BINARY_DIR}/${name}.cpp" ONLY_IF_DIFFERENT)
  add_library(${name} OBJECT "${CMAKE_BINARY_DIR}/${name}.cpp")
  target_link_libraries(${name} PRIVATE vellumark_options fmt::fmt ${given_LIBRARIES})
  target_compile_options(${name} PRIVATE ${given_OPTIONS})
  target_precompile_headers(${name} PRIVATE ${given_UNPARSED_ARGUMENTS})
  set_target_properties(${name} PROPERTIES AUTOMOC OFF)
endfunction()

# A room of the core is a static library of every .cpp in src/core/NAME and its folders, linked to the rooms declared
# before it; its tests are every .cpp in tests/core/NAME, gathered in one binary.
set(VELLUMARK_CORE_ROOMS "" CACHE INTERNAL "")

function(vellumark_room name)
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/src/core/${name}/*.cpp" "${CMAKE_SOURCE_DIR}/src/core/${name}/*/*.cpp")
  # What depends on the system is written once for each; the build takes the file of its own.
  if(WIN32)
    list(FILTER sources EXCLUDE REGEX "/platform_posix\\.cpp$")
  else()
    list(FILTER sources EXCLUDE REGEX "/platform_windows\\.cpp$")
  endif()
  if(NOT sources)
    return()
  endif()
  add_library(core_${name} STATIC ${sources})
  target_link_libraries(core_${name} PUBLIC vellumark_options fmt::fmt nlohmann_json::nlohmann_json)
  target_precompile_headers(core_${name} REUSE_FROM precompiled_core)
  foreach(above IN LISTS VELLUMARK_CORE_ROOMS)
    target_link_libraries(core_${name} PUBLIC core_${above})
  endforeach()
  if(WIN32 AND name STREQUAL "base")
    target_link_libraries(core_${name} PUBLIC advapi32 ole32 shell32 uuid)
  endif()
  if(name STREQUAL "reports" AND NOT WIN32)
    target_link_libraries(core_reports PRIVATE PkgConfig::xlsxwriter)
  endif()
  if(name STREQUAL "datafile")
    target_link_libraries(core_${name} PUBLIC SQLiteCpp SQLite::SQLite3)
  endif()
  set(VELLUMARK_CORE_ROOMS ${name} ${VELLUMARK_CORE_ROOMS} CACHE INTERNAL "")
endfunction()

# One test binary: vellumark_tests(NAME FOLDER LIBRARIES...). Those of the folder `long` are left out of the quick run.
function(vellumark_tests name folder)
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/tests/${folder}/*.cpp")
  if(NOT sources)
    return()
  endif()
  add_executable(test_${name} ${sources})
  set_target_properties(test_${name} PROPERTIES VELLUMARK_TEST ON)
  target_link_libraries(test_${name} PRIVATE test_support ${ARGN} GTest::gtest GTest::gtest_main)
  target_compile_options(test_${name} PRIVATE ${VELLUMARK_TEST_OPTIONS})
  target_precompile_headers(test_${name} REUSE_FROM precompiled_tests)
  set(properties TIMEOUT 300)
  if(folder STREQUAL "long")
    set(properties TIMEOUT 3600 LABELS long)
  endif()
  gtest_discover_tests(test_${name} TEST_PREFIX "${name}." DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
                       PROPERTIES ${properties})
endfunction()
