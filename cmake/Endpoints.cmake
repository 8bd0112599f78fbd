# SPDX-License-Identifier: Apache-2.0
# The endpoints are compiled in: two hosts, chosen here, with fixed ports.

set(MURLINK_ROBOT_HOST "127.0.0.1" CACHE STRING
  "IPv4 address of the host that runs the robot-side service (port 26710)")
set(MURLINK_DISPLAY_HOST "127.0.0.2" CACHE STRING
  "IPv4 address of the host that runs the display-side service (port 26710) and this library (port 26711)")

# Stops unless the variable holds the address of one host. Others are refused: 0.x, with which the
# library would listen on every interface, multicast and broadcast (224 to 255).
function(murlink_check_host variable)
  set(octet "(25[0-5]|2[0-4][0-9]|1[0-9][0-9]|[1-9][0-9]|[0-9])")
  if(NOT "${${variable}}" MATCHES "^${octet}\\.${octet}\\.${octet}\\.${octet}$"
     OR "${${variable}}" MATCHES "^(0|22[4-9]|2[3-5][0-9])\\.")
    message(FATAL_ERROR "${variable} is \"${${variable}}\", "
      "but it must be the IPv4 address of one host in dotted form, such as 192.168.0.10")
  endif()
endfunction()

murlink_check_host(MURLINK_ROBOT_HOST)
murlink_check_host(MURLINK_DISPLAY_HOST)

# Both services use the same port.
if(MURLINK_ROBOT_HOST STREQUAL MURLINK_DISPLAY_HOST)
  message(FATAL_ERROR "MURLINK_ROBOT_HOST and MURLINK_DISPLAY_HOST are both \"${MURLINK_ROBOT_HOST}\", "
    "but the two services must run on hosts of their own")
endif()

set(MURLINK_ROBOT_ENDPOINT "${MURLINK_ROBOT_HOST}:26710")
set(MURLINK_DISPLAY_ENDPOINT "${MURLINK_DISPLAY_HOST}:26710")
set(MURLINK_CALLBACK_ENDPOINT "${MURLINK_DISPLAY_HOST}:26711")
