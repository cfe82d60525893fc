# velmora_vector_sources(NAME SOURCES ...): compiles the sources into library NAME once per vector level, for the choice
# at run time (lib/baselib/vectors/vector_level.h). VELMORA_VECTOR_LEVEL is the level's namespace.
# Such a source must not make the compiler emit inline functions of headers (std::max, std::vector members in an
# unoptimised build): the linker keeps one copy of each for the whole program, and might keep the one with instructions
# that the machine does not have. Tests look at the objects for it.
function(velmora_vector_sources name)
  cmake_parse_arguments(arg "" "" "SOURCES" ${ARGN})
  set(levels plain)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
    list(APPEND levels avx2 avx512)
  endif()
  set(flags_plain "")
  set(flags_avx2 -march=x86-64-v3)
  set(flags_avx512 -march=x86-64-v4)
  foreach(level ${levels})
    set(objects velmora_${name}_${level})
    add_library(${objects} OBJECT ${arg_SOURCES})
    set_target_properties(${objects} PROPERTIES UNITY_BUILD OFF)  # what the sources share by name differs
    target_link_libraries(${objects} PRIVATE velmora_flags)
    target_compile_definitions(${objects} PRIVATE VELMORA_VECTOR_LEVEL=${level})
    # Without errno a square root is one instruction. Vectors are passed between functions of one object only.
    target_compile_options(${objects} PRIVATE ${flags_${level}} -fno-math-errno -Wno-psabi)
    target_sources(velmora_${name} PRIVATE $<TARGET_OBJECTS:${objects}>)
    set_property(GLOBAL APPEND PROPERTY velmora_vector_objects ${objects})
  endforeach()
endfunction()
