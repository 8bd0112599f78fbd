# SPDX-License-Identifier: Apache-2.0
# cmake -DNM=... -DLIBRARY=... -DLIST=... -P exported_symbols.cmake
# Compares what the library exports with the checked-in list.

execute_process(COMMAND ${NM} --dynamic --defined-only --demangle ${LIBRARY}
  OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE "(^|\n)[0-9a-f]* [A-Za-z] " "\\1" symbols "${symbols}")
string(REGEX REPLACE "\n$" "" symbols "${symbols}")
string(REPLACE "\n" ";" symbols "${symbols}")
list(REMOVE_DUPLICATES symbols)  # a constructor has two entry points under one name
list(SORT symbols)

file(STRINGS ${LIST} expected)
list(SORT expected)
if(NOT "${symbols}" STREQUAL "${expected}")
  set(added ${symbols})
  list(REMOVE_ITEM added ${expected})
  set(missing ${expected})
  list(REMOVE_ITEM missing ${symbols})
  string(REPLACE ";" "\n  " added "${added}")
  string(REPLACE ";" "\n  " missing "${missing}")
  message(FATAL_ERROR "${LIBRARY} does not export what ${LIST} lists.\n"
    "Exported but not listed:\n  ${added}\nListed but not exported:\n  ${missing}\n"
    "If the change is wanted, update the list and src/exports.map together and tell users in "
    "CHANGELOG.md; a symbol that goes away needs a new SOVERSION. If not, keep the symbol out of "
    "src/exports.map.")
endif()
