# Cross compilation for 64-bit ARM with Debian's g++-aarch64-linux-gnu:
#   cmake -S . -B build/aarch64 -G Ninja -DCMAKE_BUILD_TYPE=Release -DVELMORA_TESTS=OFF
#         -DCMAKE_TOOLCHAIN_FILE=cmake/aarch64_linux_gnu.cmake
# The program then runs under qemu-aarch64 -L /usr/aarch64-linux-gnu.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
