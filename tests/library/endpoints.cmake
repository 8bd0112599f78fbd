# SPDX-License-Identifier: Apache-2.0
# cmake -DSOURCE=... -P endpoints.cmake
# Which hosts are accepted at configure time, and what is said about the others.

function(configure_endpoints variable value result_variable output_variable)
  execute_process(
    COMMAND ${CMAKE_COMMAND} "-D${variable}=${value}" -P ${SOURCE}/cmake/Endpoints.cmake
    RESULT_VARIABLE result ERROR_VARIABLE output)
  string(REGEX REPLACE "[ \n]+" " " output "${output}")
  set(${result_variable} ${result} PARENT_SCOPE)
  set(${output_variable} "${output}" PARENT_SCOPE)
endfunction()

foreach(variable IN ITEMS MURLINK_ROBOT_HOST MURLINK_DISPLAY_HOST)
  foreach(value IN ITEMS 127.0.0.9 10.0.0.1 192.168.250.199 223.255.255.254)
    configure_endpoints(${variable} ${value} result output)
    if(NOT result EQUAL 0)
      message(SEND_ERROR "${variable}=${value} was refused: ${output}")
    endif()
  endforeach()
  foreach(value IN ITEMS "" localhost 127.0.0 127.0.0.1.1 127.0.0.256 127.0.0.01 1.2.3.4:5 " 1.2.3.4"
      0.0.0.0 0.1.2.3 224.0.0.1 239.255.255.250 240.0.0.1 255.255.255.255 ::1 999.1.1.1)
    configure_endpoints(${variable} "${value}" result output)
    string(FIND "${output}" "${variable} is \"${value}\", but it must be the IPv4 address" said)
    if(result EQUAL 0 OR said EQUAL -1)
      message(SEND_ERROR "${variable}=\"${value}\": result ${result}, said: ${output}")
    endif()
  endforeach()
endforeach()

# Each host is a host of its own.
configure_endpoints(MURLINK_ROBOT_HOST 127.0.0.2 result output)
if(result EQUAL 0 OR NOT output MATCHES "hosts of their own")
  message(SEND_ERROR "one host for both services: result ${result}, said: ${output}")
endif()

# The check is part of the project's own configuration.
execute_process(
  COMMAND ${CMAKE_COMMAND} -S ${SOURCE} -B ${BINARY} -DMURLINK_ROBOT_HOST=robot
  RESULT_VARIABLE result ERROR_VARIABLE output OUTPUT_QUIET)
if(result EQUAL 0 OR NOT output MATCHES "MURLINK_ROBOT_HOST is \"robot\"")
  message(SEND_ERROR "the project was configured with a wrong host: ${output}")
endif()
