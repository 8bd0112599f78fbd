# SPDX-License-Identifier: Apache-2.0
# Usage: ctest -S cmake/memcheck.cmake
# Runs the tests of build/dev under valgrind's memcheck; scripts/test memcheck builds them before.
# Leaves out the endurance tests: under valgrind they exceed their time limits.
set(CTEST_SOURCE_DIRECTORY ${CMAKE_CURRENT_LIST_DIR}/..)
set(CTEST_BINARY_DIRECTORY ${CTEST_SOURCE_DIRECTORY}/build/dev)
set(CTEST_SITE localhost)
set(CTEST_BUILD_NAME memcheck)
find_program(CTEST_MEMORYCHECK_COMMAND valgrind REQUIRED)
# Memory that is still reachable at exit is gRPC's.
set(CTEST_MEMORYCHECK_COMMAND_OPTIONS
  "--leak-check=full --errors-for-leak-kinds=definite --error-exitcode=9")

ctest_start(Experimental QUIET)
ctest_memcheck(EXCLUDE_LABEL endurance PARALLEL_LEVEL 2
  RETURN_VALUE failed DEFECT_COUNT defects)
if(failed OR defects)
  message(FATAL_ERROR "Tests failed, or memcheck reported errors: see build/dev/Testing/Temporary/MemoryChecker.*.log")
endif()
