# Run by CTest: tells it the suites of a GoogleTest program, a test each. The list is kept beside the
# program until the program is newer. Set before: TAVRIX_SUITES_NAME, _PROGRAM, _LIST, _EMULATOR,
# _LABEL, _TIMEOUT, _ENVIRONMENT. Sets <name>_TESTS, the list of the tests.
if(NOT EXISTS ${TAVRIX_SUITES_PROGRAM})
  add_test(${TAVRIX_SUITES_NAME}_NOT_BUILT ${TAVRIX_SUITES_NAME}_NOT_BUILT)
  set_tests_properties(${TAVRIX_SUITES_NAME}_NOT_BUILT PROPERTIES LABELS ${TAVRIX_SUITES_LABEL})
  return()
endif()
if(${TAVRIX_SUITES_PROGRAM} IS_NEWER_THAN ${TAVRIX_SUITES_LIST})
  execute_process(COMMAND ${TAVRIX_SUITES_EMULATOR} ${TAVRIX_SUITES_PROGRAM} --gtest_list_tests
                  OUTPUT_FILE ${TAVRIX_SUITES_LIST} RESULT_VARIABLE failed)
  if(failed)
    file(REMOVE ${TAVRIX_SUITES_LIST})
    message(FATAL_ERROR "${TAVRIX_SUITES_NAME} does not list its tests: ${failed}")
  endif()
endif()
# A suite stands alone on its line, with a point behind it, and its tests below with blanks before
# them. Of a suite of tests with a parameter each parameter is a test of its own: otherwise the
# longest suites would end alone, with processors idle.
file(STRINGS ${TAVRIX_SUITES_LIST} lines REGEX "^([^ ]+\\.|  [^ ]+)( .*)?$")
set(tests "")
foreach(line IN LISTS lines)
  string(REGEX REPLACE " +#.*$" "" line "${line}")
  if(line MATCHES "^  [^/]+/(.+)$")
    list(APPEND tests "${suite}.*/${CMAKE_MATCH_1}")
  elseif(line MATCHES "^  ")
    list(APPEND tests "${suite}.*")
  else()
    string(REGEX REPLACE "\\.$" "" suite "${line}")
  endif()
endforeach()
list(REMOVE_DUPLICATES tests)
set(${TAVRIX_SUITES_NAME}_TESTS "")
foreach(filter IN LISTS tests)
  string(REGEX REPLACE "\\.\\*" "" name "${filter}")
  set(test ${TAVRIX_SUITES_NAME}.${name})
  list(APPEND ${TAVRIX_SUITES_NAME}_TESTS ${test})
  add_test(${test} ${TAVRIX_SUITES_EMULATOR} ${TAVRIX_SUITES_PROGRAM} --gtest_filter=${filter})
  set_tests_properties(${test} PROPERTIES LABELS ${TAVRIX_SUITES_LABEL}
                       TIMEOUT ${TAVRIX_SUITES_TIMEOUT}
                       ENVIRONMENT "${TAVRIX_SUITES_ENVIRONMENT}")
endforeach()
