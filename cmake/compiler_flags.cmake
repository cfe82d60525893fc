# One interface target carries what whoever links a library needs, too; all libraries and programs link it.
add_library(velmora_flags INTERFACE)
set_target_properties(velmora_flags PROPERTIES EXPORT_NAME flags)
target_compile_features(velmora_flags INTERFACE cxx_std_20)
target_include_directories(velmora_flags INTERFACE
  $<BUILD_INTERFACE:${velmora_SOURCE_DIR}> $<INSTALL_INTERFACE:include/velmora>)

# Warnings hold for the sources of this tree only, and are errors where it is worked on: not for users of add_subdirectory.
# No -ffast-math and no -fno-trapping-math: the program runs with floating-point traps on. A multiplication is never fused
# with an addition: machines with and without such instructions then give the same products.
option(VELMORA_WARNINGS_AS_ERRORS "Treat warnings of velmora's own sources as errors" ${PROJECT_IS_TOP_LEVEL})
add_compile_options(
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wformat=2
  -Wnon-virtual-dtor -Woverloaded-virtual -ffp-contract=off $<$<BOOL:${VELMORA_WARNINGS_AS_ERRORS}>:-Werror>)
# g++ 12 sees an overlapping copy in "text" + std::to_string(n) that is not there (GCC bug 105651).
add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
# Where several files are compiled as one, a class may well have fields of its file's unnamed namespace, and a local name be
# another file's: the builds by file tell of those that matter.
add_compile_options($<$<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>:-Wno-shadow>
  $<$<AND:$<CXX_COMPILER_ID:GNU>,$<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>>:-Wno-subobject-linkage>)

# Hardening of the shipped program: position independent, stack guards, checked copies of the C library, addresses of
# library functions read-only before main(), no executable stack. tests/end_to_end/test_hardening.py reads it all from the
# binary. Cost in user time on the wide scene of benchmarks/whole_program.py, 60 pairs of runs: 0.2 % of the minimum, none
# of the median.
add_compile_options(-fPIE -fstack-protector-strong)
add_link_options(-pie LINKER:-z,relro,-z,now,-z,noexecstack)


find_package(Threads REQUIRED)

set(VELMORA_SANITIZE "" CACHE STRING "Sanitizers, for example address,undefined")
if(VELMORA_SANITIZE)
  set(sanitizer_flags -fsanitize=${VELMORA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_compile_options(velmora_flags INTERFACE ${sanitizer_flags})
  target_link_options(velmora_flags INTERFACE ${sanitizer_flags})
else()  # the checked copies need an optimiser, and would hide faults from a sanitizer
  add_compile_options("$<$<CONFIG:Release>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
endif()
