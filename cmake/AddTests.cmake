# renderengine_add_test(NAME SOURCES file... [LIBRARIES lib...] [LAUNCHER program])
#
# Makes the program NAME from GoogleTest sources and registers each of its cases with CTest. CTest runs each case in a
# process of its own, so that a case may set a preference that the library caches for the life of the process. A launcher
# is run with the test's program and its arguments.

include(GoogleTest)
if(CMAKE_CROSSCOMPILING)
  # The package of the library is for the build machine; that of its sources serves every machine.
  find_path(GOOGLETEST_SOURCES googletest/CMakeLists.txt REQUIRED NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH
            PATHS /usr/local/src/googletest /usr/src/googletest)
  set(INSTALL_GTEST OFF CACHE BOOL "Install GoogleTest with the project")
  add_subdirectory(${GOOGLETEST_SOURCES} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
else()
  find_package(GTest REQUIRED)
endif()

function(renderengine_add_test name)
  cmake_parse_arguments(ARG "" "LAUNCHER" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} GTest::gmock GTest::gtest GTest::gtest_main)
  renderengine_target_settings(${name})
  if(CMAKE_CROSSCOMPILING)
    # A process takes long to start there, so it runs many cases.
    add_test(NAME ${name} COMMAND ${CMAKE_SOURCE_DIR}/tools/dev/wine_cases $<TARGET_FILE:${name}>)
    set_tests_properties(${name} PROPERTIES TIMEOUT 600)
    return()
  endif()
  if(ARG_LAUNCHER)
    set_target_properties(${name} PROPERTIES CROSSCOMPILING_EMULATOR ${ARG_LAUNCHER})
  endif()
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 120)
endfunction()
