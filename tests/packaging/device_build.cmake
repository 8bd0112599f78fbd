# SPDX-License-Identifier: Apache-2.0
# cmake -DSOURCE=... -DBINARY=... -P device_build.cmake
# A build by hand for a device's addresses is optimised, and leaves out the tests with a message.

file(REMOVE_RECURSE ${BINARY})
execute_process(
  COMMAND ${CMAKE_COMMAND} -S ${SOURCE} -B ${BINARY} -DMURLINK_ROBOT_HOST=192.168.0.10
    -DMURLINK_DISPLAY_HOST=192.168.0.11
  OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
if(NOT output MATCHES "Leaving out the tests: they play the robot on this machine")
  message(SEND_ERROR "nothing is said about the tests: ${output}")
endif()
if(EXISTS ${BINARY}/tests/CTestTestfile.cmake)
  message(SEND_ERROR "there are tests")
endif()

load_cache(${BINARY} READ_WITH_PREFIX "" CMAKE_BUILD_TYPE)
if(NOT CMAKE_BUILD_TYPE STREQUAL RelWithDebInfo)
  message(SEND_ERROR "the build type is \"${CMAKE_BUILD_TYPE}\"")
endif()
