# SPDX-License-Identifier: Apache-2.0
# Toolchain for devices with a 64-bit ARM processor, on a Debian machine with another: Debian's cross
# compiler and the :arm64 packages of the libraries. protoc and its plugin are this machine's own.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)

# pkg-config would find this machine's libraries.
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/aarch64-linux-gnu/pkgconfig)

# Runs the tests.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64)
