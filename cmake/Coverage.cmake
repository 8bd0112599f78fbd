# SPDX-License-Identifier: Apache-2.0
# With MURLINK_COVERAGE the library's objects count what runs in them. The target `coverage` prints
# what the tests have reached since the last build, and fails below the limits.

option(MURLINK_COVERAGE "Measure which lines and branches of src/ the tests reach (gcc only)" OFF)
if(MURLINK_COVERAGE)
  target_compile_options(murlink_objects PRIVATE --coverage -O0)
  target_link_options(murlink_objects PUBLIC --coverage)
  find_program(MURLINK_GCOVR gcovr REQUIRED)
  # Branches that only an exception takes are the compiler's: nearly every call has one.
  set(gcovr ${MURLINK_GCOVR} --root ${PROJECT_SOURCE_DIR} --filter ${PROJECT_SOURCE_DIR}/src/
    --exclude-throw-branches --exclude-unreachable-branches)
  add_custom_target(coverage
    COMMAND ${gcovr} --sort-percentage --fail-under-line 100 --fail-under-branch 95
      ${PROJECT_BINARY_DIR}
    COMMAND ${gcovr} --branches ${PROJECT_BINARY_DIR}
    WORKING_DIRECTORY ${PROJECT_BINARY_DIR}
    USES_TERMINAL VERBATIM)
endif()
