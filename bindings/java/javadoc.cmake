# SPDX-License-Identifier: Apache-2.0
# The documentation of the Java files that SOURCES lists, from the comments of the C++ headers. Those
# are plain text, so nothing is checked as HTML.
file(REMOVE_RECURSE ${OUT})
execute_process(COMMAND ${JAVADOC} -quiet -Xdoclint:none -notimestamp -encoding UTF-8 -d ${OUT} @${SOURCES}
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
