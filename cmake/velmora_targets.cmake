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
  add_library(velmora::${name} ALIAS velmora_${name})
  set_target_properties(velmora_${name} PROPERTIES EXPORT_NAME ${name})
  list(TRANSFORM arg_USES PREPEND velmora_)
  target_link_libraries(velmora_${name} ${scope} ${arg_USES} velmora_flags Threads::Threads)
endfunction()

# velmora_test(NAME SOURCES ... USES ... [LABEL threads|long]): one test program per library, run with the product's
# floating-point traps on. A sanitizer run and a plain run differ in the preset only. threads is for tests that start
# threads or concern what threads call: ThreadSanitizer builds run these only, and the target threads_tests builds them;
# long, for tests of minutes, keeps them out of the default run.
function(velmora_test name)
  cmake_parse_arguments(arg "" "LABEL" "SOURCES;USES" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  list(TRANSFORM arg_USES PREPEND velmora_)
  target_link_libraries(${name} PRIVATE ${arg_USES} velmora_floating_point_traps GTest::gmock GTest::gtest_main)
  if(arg_LABEL)
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES LABELS ${arg_LABEL})
    velmora_label_target(${arg_LABEL} ${name})
  else()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST)
  endif()
endfunction()

function(velmora_label_target label program)
  if(NOT TARGET ${label}_tests)
    add_custom_target(${label}_tests)
  endif()
  add_dependencies(${label}_tests ${program})
endfunction()
