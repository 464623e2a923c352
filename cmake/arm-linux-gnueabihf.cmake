# 32-bit ARM with hardware floating point, by Debian's cross compiler. What is built runs under the
# user-mode emulator. Times and file positions have 64 bits, as on every newer 32-bit system.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)

set(triplet arm-linux-gnueabihf)
set(CMAKE_C_COMPILER ${triplet}-gcc)
set(CMAKE_CXX_COMPILER ${triplet}-g++)
set(wide_numbers "-D_FILE_OFFSET_BITS=64 -D_TIME_BITS=64")
set(CMAKE_C_FLAGS_INIT "${wide_numbers}")
set(CMAKE_CXX_FLAGS_INIT "${wide_numbers}")

# The cross packages' libraries serve as the root folder. Their C library comes without its
# modules for code pages, which scripts/fetch-arm-conversions gets into the build folder.
set(CMAKE_FIND_ROOT_PATH /usr/${triplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(TAVRIX_ARM_CONVERSIONS ${CMAKE_BINARY_DIR}/conversions)
set(CMAKE_CROSSCOMPILING_EMULATOR
    /usr/bin/qemu-arm -L /usr/${triplet} -E GCONV_PATH=${TAVRIX_ARM_CONVERSIONS}/gconv)
