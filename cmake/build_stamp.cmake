# Date and builder for the log header. Fixed at configure time: a build of unchanged sources gives the same program.
# TIMESTAMP honours SOURCE_DATE_EPOCH; -DVELMORA_COMPILE_DATE=... and -DVELMORA_BUILDER=... override.
if(NOT VELMORA_COMPILE_DATE)
  string(TIMESTAMP VELMORA_COMPILE_DATE "%Y-%m-%dT%H:%M:%SZ" UTC)
endif()
if(NOT VELMORA_BUILDER)
  if(DEFINED ENV{USER})
    set(VELMORA_BUILDER $ENV{USER})
  else()
    set(VELMORA_BUILDER unknown)
  endif()
endif()
set_source_files_properties(${velmora_SOURCE_DIR}/app/velmora_version.cpp
  TARGET_DIRECTORY velmora_app PROPERTIES COMPILE_DEFINITIONS
  "VELMORA_COMPILE_DATE=\"${VELMORA_COMPILE_DATE}\";VELMORA_BUILDER=\"${VELMORA_BUILDER}\"")
