# SPDX-License-Identifier: Apache-2.0
# cmake -DDOCUMENT=... -DOUTPUT=... -P extract_example.cmake
# Writes the first C program in a document, a header or a Markdown file, to a file of its own.

file(READ ${DOCUMENT} text)
if(DOCUMENT MATCHES "\\.md$")
  set(begin "```c\n")
  set(end "```\n")
else()
  string(REGEX REPLACE "\n \\* ?" "\n" text "${text}")
  set(begin "\n@code\n")
  set(end "@endcode\n")
endif()

string(FIND "${text}" "${begin}" position)
if(position EQUAL -1)
  message(FATAL_ERROR "${DOCUMENT} contains no example")
endif()
string(LENGTH "${begin}" length)
math(EXPR position "${position} + ${length}")
string(SUBSTRING "${text}" ${position} -1 text)
string(FIND "${text}" "${end}" length)
string(SUBSTRING "${text}" 0 ${length} program)
file(WRITE ${OUTPUT} "${program}")
