# SPDX-License-Identifier: Apache-2.0
# Runs an example over a sample, or what ARGUMENT names below the samples, and compares what it
# prints; a missing file ends it with 1 and a sentence.
if(NOT ARGUMENT)
  set(ARGUMENT veltrin_h90/veltrin_h90.pka)
endif()
execute_process(COMMAND ${INTERPRETER} ${PROGRAM} ${SAMPLES}/${ARGUMENT}
  OUTPUT_VARIABLE printed RESULT_VARIABLE code)
file(READ ${EXPECTED} expected)
if(NOT code EQUAL 0 OR NOT printed STREQUAL expected)
  message(FATAL_ERROR "code ${code}, printed:\n${printed}expected:\n${expected}")
endif()
execute_process(COMMAND ${INTERPRETER} ${PROGRAM} none.qpfm ERROR_VARIABLE told RESULT_VARIABLE code)
if(NOT code EQUAL 1 OR NOT told MATCHES "none.qpfm")
  message(FATAL_ERROR "a missing file: code ${code}, told:\n${told}")
endif()
