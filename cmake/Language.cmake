# SPDX-License-Identifier: Apache-2.0
# What every target of our own is compiled with. Linked PRIVATE, so users never inherit it.

add_library(murlink_language INTERFACE)
target_compile_features(murlink_language INTERFACE cxx_std_17 c_std_99)
target_link_libraries(murlink_language INTERFACE murlink_hardening)
if(PROJECT_IS_TOP_LEVEL)
  target_compile_options(murlink_language INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
endif()
