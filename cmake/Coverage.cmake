# SPDX-License-Identifier: Apache-2.0
# The target `coverage` runs the tests and prints how much of src/ they reach. Needs a build with
# --coverage, as the preset of the same name makes it.

if(CMAKE_CXX_FLAGS MATCHES "--coverage")
  find_program(MURLINK_GCOVR gcovr REQUIRED)
  # Branches that only an exception takes are the compiler's: nearly every call has one.
  add_custom_target(coverage
    COMMAND find ${PROJECT_BINARY_DIR} -name *.gcda -delete
    COMMAND ${CMAKE_CTEST_COMMAND} --output-on-failure --progress
    COMMAND ${MURLINK_GCOVR} --root ${PROJECT_SOURCE_DIR} --filter ${PROJECT_SOURCE_DIR}/src/
      --exclude-throw-branches --exclude-unreachable-branches --sort-percentage
      --fail-under-line 100 --fail-under-branch 95 ${PROJECT_BINARY_DIR}
    COMMAND ${MURLINK_GCOVR} --root ${PROJECT_SOURCE_DIR} --filter ${PROJECT_SOURCE_DIR}/src/
      --exclude-throw-branches --exclude-unreachable-branches --branches ${PROJECT_BINARY_DIR}
    WORKING_DIRECTORY ${PROJECT_BINARY_DIR}
    USES_TERMINAL VERBATIM)
endif()
