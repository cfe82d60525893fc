# Date and builder for the log header. Fixed at configure time: a build of unchanged sources gives the same program.
# TIMESTAMP honours SOURCE_DATE_EPOCH.
string(TIMESTAMP velmora_compile_date "%Y-%m-%dT%H:%M:%SZ" UTC)
if(DEFINED ENV{USER})
  set(velmora_builder_default $ENV{USER})
else()
  set(velmora_builder_default "unknown")
endif()
set(VELMORA_COMPILE_DATE ${velmora_compile_date} CACHE STRING "Build date in the log header")
set(VELMORA_BUILDER ${velmora_builder_default} CACHE STRING "Builder in the log header")
set_source_files_properties(${CMAKE_SOURCE_DIR}/app/velmora_version.cpp
  TARGET_DIRECTORY velmora_app PROPERTIES COMPILE_DEFINITIONS
  "VELMORA_COMPILE_DATE=\"${VELMORA_COMPILE_DATE}\";VELMORA_BUILDER=\"${VELMORA_BUILDER}\"")
