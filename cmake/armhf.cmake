# 32-bit ARM with hardware floating point, by Debian's cross compiler. The programs run here under an emulator.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm -L /usr/arm-linux-gnueabihf)

# The libraries from scripts/armhf-libraries come before this machine's own. Of the latter only machine-independent
# parts are found: headers and packages without a library.
set(CMAKE_FIND_ROOT_PATH ${CMAKE_CURRENT_LIST_DIR}/../build/armhf-libraries)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)

# Off: a note at every call with a vector's iterator that compilers of 2016 passed it differently.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)
