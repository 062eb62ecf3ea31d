# 32-bit ARM with hardware floating point, by Debian's cross compiler. What is built runs here under an emulator.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm -L /usr/arm-linux-gnueabihf)

# What scripts/armhf-libraries has fetched goes before this machine's own; of the latter only what is for any machine is
# met, headers and packages without a library.
set(CMAKE_FIND_ROOT_PATH ${CMAKE_CURRENT_LIST_DIR}/../build/armhf-libraries)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)

# Notes that every call with a vector's iterator differs from what a compiler of 2016 would have made of it.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)
