# Writes the tests of a GoogleTest program for ctest, a test a suite:
#     cmake -DPROGRAM=FILE -DLAUNCHER=FILE -DNAME=PREFIX -DLABEL=WORD -DFOLDER=DIR -DOUTPUT=FILE -P
# A suite is a process of its own: it may leave the device as it likes, and shares what is costly.
execute_process(COMMAND ${PROGRAM} --gtest_list_tests WORKING_DIRECTORY ${FOLDER}
                OUTPUT_VARIABLE listed RESULT_VARIABLE failed)
if(failed)
  message(FATAL_ERROR "${PROGRAM} does not list its tests: ${failed}")
endif()
string(REGEX MATCHALL "(^|\n)[^ \n]+\\.[^\n]*" suites "${listed}")
set(text "")
foreach(suite ${suites})
  string(REGEX REPLACE "^\n?([^ ]+)\\..*" "\\1" suite "${suite}")
  string(APPEND text "add_test([=[${NAME}.${suite}]=] ${LAUNCHER} [=[${PROGRAM}]=] "
                     "[=[--gtest_filter=${suite}.*]=])\n"
                     "set_tests_properties([=[${NAME}.${suite}]=] PROPERTIES "
                     "WORKING_DIRECTORY [=[${FOLDER}]=] LABELS [=[${LABEL}]=])\n")
endforeach()
file(WRITE ${OUTPUT} "${text}")
