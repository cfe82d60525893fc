# One interface target carries every flag; all libraries and programs link it.
add_library(velmora_flags INTERFACE)
target_compile_features(velmora_flags INTERFACE cxx_std_20)
# No -ffast-math and no -fno-trapping-math: the program runs with floating-point traps on. A multiplication is never fused
# with an addition: machines with and without such instructions then give the same products.
target_compile_options(velmora_flags INTERFACE
  -Wall -Wextra -Wpedantic -Werror -Wshadow -Wconversion -Wno-sign-conversion -Wformat=2
  -Wnon-virtual-dtor -Woverloaded-virtual -ffp-contract=off)
# g++ 12 sees an overlapping copy in "text" + std::to_string(n) that is not there (GCC bug 105651).
target_compile_options(velmora_flags INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
target_include_directories(velmora_flags INTERFACE ${CMAKE_SOURCE_DIR})

# Hardening of the shipped program: position independent, stack guards, checked copies of the C library, addresses of
# library functions read-only before main(), no executable stack. tests/end_to_end/test_hardening.py reads it all from the
# binary. Cost in user time on the wide scene of benchmarks/whole_program.py, 60 pairs of runs: 0.2 % of the minimum, none
# of the median.
target_compile_options(velmora_flags INTERFACE -fPIE -fstack-protector-strong)
target_link_options(velmora_flags INTERFACE -pie LINKER:-z,relro,-z,now,-z,noexecstack)


find_package(Threads REQUIRED)

set(VELMORA_SANITIZE "" CACHE STRING "Sanitizers, for example address,undefined")
if(VELMORA_SANITIZE)
  set(sanitizer_flags -fsanitize=${VELMORA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_compile_options(velmora_flags INTERFACE ${sanitizer_flags})
  target_link_options(velmora_flags INTERFACE ${sanitizer_flags})
else()  # the checked copies need an optimiser, and would hide faults from a sanitizer
  target_compile_options(velmora_flags INTERFACE $<$<CONFIG:Release>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>)
endif()
