# SPDX-License-Identifier: Apache-2.0
# cmake -DHEADER=... -DOUTPUT=... -P extract_manual_example.cmake
# Writes the complete program in the public header's file comment to a file of its own.

file(READ ${HEADER} text)
string(REGEX MATCH "@code\n(.*) \\* @endcode\n \\*\n \\*\n \\* Results" found "${text}")
if(NOT found)
  message(FATAL_ERROR "${HEADER} holds no example before \"Results\"")
endif()
string(REGEX REPLACE "(^|\n) \\* ?" "\\1" program "${CMAKE_MATCH_1}")
file(WRITE ${OUTPUT} "${program}")
