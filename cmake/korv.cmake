# A concept with a platform-specific part keeps it in X_posix.cpp and
# X_win32.cpp (or X.cpp and X_win32.cpp); tests likewise in *_posix_test.cpp
# and *_win32_test.cpp. Keeps in `var` the files that this platform builds.
# POSIX-only tests not yet named so: the disk-full cases of the buffered file
# layer, which use setrlimit.
set(KORV_POSIX_ONLY_TESTS fastfile_test fastfile_atonce_test)
# Single cases that hold for the POSIX C library only: glibc refuses a wide
# string it cannot convert, mingw's runtime does not.
set(KORV_POSIX_ONLY_CASES StlStringFormat.LibraryFailureIsLoggedWithTheErrorText)

function(korv_platform_filter var)
  set(kept)
  foreach(file ${${var}})
    get_filename_component(stem ${file} NAME_WE)
    if(WIN32 AND stem IN_LIST KORV_POSIX_ONLY_TESTS)
      continue()
    endif()
    get_filename_component(dir ${file} DIRECTORY)
    if(WIN32)
      if(stem MATCHES "_posix(_test)?$" OR EXISTS ${dir}/${stem}_win32.cpp)
        continue()
      endif()
    elseif(stem MATCHES "_win32(_test)?$")
      continue()
    endif()
    list(APPEND kept ${file})
  endforeach()
  set(${var} ${kept} PARENT_SCOPE)
endfunction()

# Registers the tests of a GoogleTest executable. Under an emulator each start
# costs, so there the whole executable is one test; its output names the case
# that failed.
function(korv_add_gtest target)
  cmake_parse_arguments(ARG "" "" "PROPERTIES" ${ARGN})
  if(CMAKE_CROSSCOMPILING_EMULATOR)
    list(JOIN KORV_POSIX_ONLY_CASES ":" skipped)
    add_test(NAME ${target} COMMAND ${target} --gtest_filter=-${skipped})
    # Tests under wine share the prefix's drive C: and registry.
    set_tests_properties(${target} PROPERTIES RESOURCE_LOCK wine_drive_c
      FIXTURES_REQUIRED wine_session ${ARG_PROPERTIES})
  else()
    gtest_discover_tests(${target} DISCOVERY_TIMEOUT 60 PROPERTIES ${ARG_PROPERTIES})
  endif()
endfunction()

# korv_library(NAME [MODULE trace-module] [DEPS lib...] [TEST_DEPS lib...])
# A library lives in a folder with inc/, src/ and tests/. Its sources and tests
# are every .cpp below src/ and tests/; each test file is part of one test binary.
function(korv_library name)
  cmake_parse_arguments(ARG "" "MODULE" "DEPS;TEST_DEPS" ${ARGN})
  if(NOT ARG_MODULE)
    set(ARG_MODULE ${name})
  endif()
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/src/*.cpp)
  korv_platform_filter(sources)
  if(NOT sources)
    message(STATUS "${name}: no sources yet, skipped")
    return()
  endif()
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR}/inc)
  target_link_libraries(${name} PUBLIC ${ARG_DEPS})
  # Trace levels are set per module; each library traces under its own name.
  target_compile_definitions(${name} PRIVATE KORV_MODULE="${ARG_MODULE}")
  if(KORV_BUILD_TESTS)
    file(GLOB_RECURSE tests CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/tests/*.cpp)
    korv_platform_filter(tests)
    if(tests)
      add_executable(${name}_tests ${tests})
      target_include_directories(${name}_tests PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/tests)
      target_link_libraries(${name}_tests PRIVATE ${name} ${ARG_TEST_DEPS} korv_testsupport GTest::gtest GTest::gtest_main)
      korv_add_gtest(${name}_tests PROPERTIES ENVIRONMENT "KORV_LOG_DIR=-")
    endif()
  endif()
endfunction()

# Gives a Windows program the version resource; nothing elsewhere, where the
# version table is compiled into the platform library.
function(korv_version_resource target)
  if(WIN32)
    get_property(rc GLOBAL PROPERTY KORV_VERSION_RC)
    target_sources(${target} PRIVATE ${rc})
  endif()
endfunction()
