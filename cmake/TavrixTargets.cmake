# How a folder of the program becomes a library and its tests a program of their own.

include(GoogleTest)
find_package(Threads REQUIRED)
if(CMAKE_CROSSCOMPILING)
  # The host's test library is no use on another machine: built from the sources that come with it.
  add_subdirectory(/usr/src/googletest/googletest googletest EXCLUDE_FROM_ALL SYSTEM)
else()
  find_package(GTest REQUIRED)
endif()

# Where sources and build lie, and what a test that starts a program of the build puts in front of
# it: nothing, or the emulator. The one source that is not the same in every checkout.
set(emulator "")
foreach(word ${CMAKE_CROSSCOMPILING_EMULATOR})
  string(APPEND emulator "\"${word}\",")
endforeach()
file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/generated/TestPaths.cpp CONTENT "\
// Made by the build: where things lie.
#include \"platform/testing/core/TestPaths.h\"

namespace tavrix::testing
{

std::string InSource(const std::string& below)
{
    return \"@CMAKE_SOURCE_DIR@\" + below;
}

std::string InBuild(const std::string& below)
{
    return \"@CMAKE_BINARY_DIR@\" + below;
}

std::vector<std::string> TestEmulator()
{
    return {@emulator@};
}

} // namespace tavrix::testing
" @ONLY)
add_library(tavrix_test_paths STATIC EXCLUDE_FROM_ALL ${CMAKE_BINARY_DIR}/generated/TestPaths.cpp)
add_library(tavrix::test_paths ALIAS tavrix_test_paths)
target_include_directories(tavrix_test_paths PUBLIC ${CMAKE_SOURCE_DIR})

# Tests are compiled for a quick build: not optimised, and with lines alone for the debugger. What
# they test is built as its preset says. Under the emulator they would run too long that way.
set(TAVRIX_TEST_OPTIONS $<$<NOT:$<CONFIG:Release>>:-g1>)
if(NOT CMAKE_CROSSCOMPILING)
  list(APPEND TAVRIX_TEST_OPTIONS -O0)
endif()

# What tests run is slightly optimised also for the debugger: under the sanitizers the inner loops
# would take most of the tests' time.
set(TAVRIX_DEBUG_OPTIONS $<$<CONFIG:Debug>:-O1>)
set(TAVRIX_STRICT_OPTIONS -Wall -Wextra -Wpedantic -Wshadow -Wconversion ${TAVRIX_DEBUG_OPTIONS})

# What the toolkit and the font library keep for the life of a process is no leak of ours, and what
# the C library does under locks that the sanitizer cannot see is no race. Freed blocks that the C
# library keeps for the thread would count as memory in use. Where the variables that a library has
# for each thread lie behind the first bytes of a page, the leak checker takes those for their size,
# and looks for blocks where no memory is: it is not told of them.
set(TAVRIX_TEST_ENVIRONMENT
    "ASAN_OPTIONS=intercept_tls_get_addr=0"
    "LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/leaks.supp:print_suppressions=0"
    "UBSAN_OPTIONS=print_stacktrace=1"
    "TSAN_OPTIONS=halt_on_error=1:suppressions=${CMAKE_SOURCE_DIR}/tests/races.supp"
    "GLIBC_TUNABLES=glibc.malloc.tcache_count=0")

# tavrix_library(NAME [DEPENDS target...]): the sources of the current folder as tavrix::NAME.
# No exceptions and no run-time type information above the platform.
function(tavrix_library name)
  cmake_parse_arguments(ARG "" "" "DEPENDS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  file(GLOB headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  add_library(tavrix_${name} STATIC ${sources} ${headers})
  add_library(tavrix::${name} ALIAS tavrix_${name})
  target_include_directories(tavrix_${name} PUBLIC ${CMAKE_SOURCE_DIR})
  target_compile_options(tavrix_${name} PRIVATE ${TAVRIX_STRICT_OPTIONS}
                         $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti>)
  target_link_libraries(tavrix_${name} PUBLIC tavrix::device ${ARG_DEPENDS})
endfunction()

function(tavrix_test_suites name label timeout environment)
  # A suite of many tests may take longer than each of them.
  if(timeout LESS 600)
    set(timeout 600)
  endif()
  file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${name}_suites.cmake CONTENT "
set(TAVRIX_SUITES_NAME @name@)
set(TAVRIX_SUITES_PROGRAM \"@CMAKE_BINARY_DIR@/tests/@name@\")
set(TAVRIX_SUITES_LIST \"@CMAKE_CURRENT_BINARY_DIR@/@name@_suites.txt\")
set(TAVRIX_SUITES_EMULATOR \"@CMAKE_CROSSCOMPILING_EMULATOR@\")
set(TAVRIX_SUITES_LABEL @label@)
set(TAVRIX_SUITES_TIMEOUT @timeout@)
set(TAVRIX_SUITES_ENVIRONMENT \"@environment@\")
include(\"@CMAKE_SOURCE_DIR@/cmake/DiscoverSuites.cmake\")
" @ONLY)
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES
               ${CMAKE_CURRENT_BINARY_DIR}/${name}_suites.cmake)
endfunction()

# tavrix_tests(NAME LABEL layer SOURCES file... LIBRARIES target...): a GoogleTest program whose
# suites CTest knows one by one under the label of their layer. Without SOURCES: tests/*.cpp.
# Each test gets a process and a home of its own, so that none sees the user's files or another
# test's; the processes of a suite are forks of one, as most of a small test's time is its start.
# SUITES: one process for a suite, where its tests leave nothing behind in it.
# EACH: CTest knows each test, to run those side by side that wait most of the time.
# Built without run-time type information, as what they derive from; RTTI asks for it.
function(tavrix_tests name)
  cmake_parse_arguments(ARG "RTTI;SUITES;EACH" "LABEL;TIMEOUT" "SOURCES;LIBRARIES;DEFINITIONS"
                        ${ARGN})
  if(NOT ARG_SOURCES)
    file(GLOB ARG_SOURCES CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/tests/*.cpp)
  endif()
  if(NOT ARG_LABEL)
    set(ARG_LABEL unit)
  endif()
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_compile_options(${name} PRIVATE -Wall -Wextra -Wshadow ${TAVRIX_TEST_OPTIONS})
  if(NOT ARG_RTTI)
    target_compile_options(${name} PRIVATE -fno-rtti)
  endif()
  target_compile_definitions(${name} PRIVATE ${ARG_DEFINITIONS})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR} ${CMAKE_BINARY_DIR}/generated)
  target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} tavrix::test_paths GTest::gtest)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  if(ARG_EACH)
    tavrix_each_test(${name} ${ARG_LABEL} ${ARG_TIMEOUT})
  elseif(ARG_SUITES)
    tavrix_test_suites(${name} ${ARG_LABEL} ${ARG_TIMEOUT} "${TAVRIX_TEST_ENVIRONMENT}")
  else()
    tavrix_test_suites(${name} ${ARG_LABEL} ${ARG_TIMEOUT}
                       "${TAVRIX_TEST_ENVIRONMENT};TAVRIX_TESTS_APART=${ARG_TIMEOUT}")
  endif()
endfunction()

function(tavrix_each_test name label timeout)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60 NO_PRETTY_TYPES
                       TEST_PREFIX "${name}." PROPERTIES LABELS ${label} TIMEOUT ${timeout})
  # Of a list among those properties only the first would arrive.
  file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${name}_environment.cmake CONTENT "
if(@name@_TESTS)
  set_tests_properties(\${@name@_TESTS} PROPERTIES ENVIRONMENT \"@TAVRIX_TEST_ENVIRONMENT@\")
endif()
" @ONLY)
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES
               ${CMAKE_CURRENT_BINARY_DIR}/${name}_environment.cmake)
endfunction()
