# SPDX-License-Identifier: Apache-2.0
# Changes gRPC's CMake files, in their folder: removes the libraries that encrypt and the plugins for
# other languages from what is installed, and lets gRPC::grpc and gRPC::grpc++ name the libraries
# without encryption.
set(unused
  grpc grpc\\+\\+ grpc\\+\\+_alts grpc\\+\\+_error_details grpc\\+\\+_reflection
  grpc_authorization_provider grpcpp_channelz
  grpc_csharp_plugin grpc_node_plugin grpc_objective_c_plugin grpc_php_plugin grpc_python_plugin
  grpc_ruby_plugin)
list(JOIN unused "|" unused)
file(READ CMakeLists.txt text)
string(REGEX REPLACE "install\\(TARGETS (${unused}) EXPORT[^)]*\\)" "" text "${text}")
file(WRITE CMakeLists.txt "${text}")

file(READ cmake/gRPCConfig.cmake.in text)
if(NOT text MATCHES "_unsecure")
  file(APPEND cmake/gRPCConfig.cmake.in [[

foreach(library IN ITEMS grpc grpc++)
  if(NOT TARGET gRPC::${library})
    add_library(gRPC::${library} ALIAS gRPC::${library}_unsecure)
  endif()
endforeach()
]])
endif()
