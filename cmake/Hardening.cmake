# SPDX-License-Identifier: Apache-2.0
# Options of compiler and linker that make memory errors harder to exploit. The preset `release` and
# the Debian packages set MURLINK_HARDENING. Protection of the control flow depends on the processor.
include(CheckCXXCompilerFlag)

option(MURLINK_HARDENING "Stack protector, FORTIFY, control-flow protection, read-only relocations" OFF)

add_library(murlink_hardening INTERFACE)
if(MURLINK_HARDENING)
  target_compile_options(murlink_hardening INTERFACE
    -fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
  foreach(flag IN ITEMS -fcf-protection=full -mbranch-protection=standard)
    string(MAKE_C_IDENTIFIER "MURLINK_HAS${flag}" supported)
    check_cxx_compiler_flag(${flag} ${supported})
    if(${supported})
      target_compile_options(murlink_hardening INTERFACE ${flag})
    endif()
  endforeach()
  target_link_options(murlink_hardening INTERFACE LINKER:-z,relro LINKER:-z,now)
endif()
