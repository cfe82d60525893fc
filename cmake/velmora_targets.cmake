# velmora_library(NAME SOURCES ... USES ...): the static library of one folder and the arrows it may follow.
function(velmora_library name)
  cmake_parse_arguments(arg "" "" "SOURCES;USES" ${ARGN})
  if(NOT arg_SOURCES)  # a folder of headers only
    add_library(velmora_${name} INTERFACE)
    set(scope INTERFACE)
  else()
    add_library(velmora_${name} STATIC ${arg_SOURCES})
    set(scope PUBLIC)
  endif()
  list(TRANSFORM arg_USES PREPEND velmora_)
  target_link_libraries(velmora_${name} ${scope} ${arg_USES} velmora_flags Threads::Threads)
endfunction()

# velmora_test(NAME SOURCES ... USES ...): one test program per library, run with the product's floating-point traps on.
# A sanitizer run and a plain run differ in the preset only.
function(velmora_test name)
  cmake_parse_arguments(arg "" "" "SOURCES;USES" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  list(TRANSFORM arg_USES PREPEND velmora_)
  target_link_libraries(${name} PRIVATE ${arg_USES} velmora_floating_point_traps GTest::gmock GTest::gtest_main)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST)
endfunction()
