# velmora_pytest(NAME FILE ...): registers pytest files as tests, one test per file, named NAME.<file without test_>.
# The files find the program through the environment variable VELMORA_BINARY and learn from VELMORA_SANITIZE whether it
# was built with a sanitizer. LABEL gives the tests a label; WITHOUT_SANITIZERS leaves them out of sanitizer builds;
# ENVIRONMENT sets further variables.
find_program(VELMORA_PYTHON NAMES python3 PATHS /usr/bin NO_DEFAULT_PATH REQUIRED)

function(velmora_pytest name)
  cmake_parse_arguments(arg "WITHOUT_SANITIZERS" "LABEL" "FILES;ENVIRONMENT" ${ARGN})
  if(arg_WITHOUT_SANITIZERS AND VELMORA_SANITIZE)
    return()
  endif()
  set(environment PYTHONDONTWRITEBYTECODE=1 "VELMORA_SANITIZE=${VELMORA_SANITIZE}" ${arg_ENVIRONMENT})
  if(TARGET velmora)
    list(APPEND environment VELMORA_BINARY=$<TARGET_FILE:velmora>)
    if(arg_LABEL)
      velmora_label_target(${arg_LABEL} velmora)
    endif()
  endif()
  foreach(file ${arg_FILES})
    get_filename_component(stem ${file} NAME_WE)
    string(REGEX REPLACE "^test_" "" stem ${stem})
    add_test(NAME ${name}.${stem}
      COMMAND ${VELMORA_PYTHON} -m pytest -q -p no:cacheprovider ${CMAKE_CURRENT_SOURCE_DIR}/${file})
    # Begun before the test programs, whose short cases then keep all cores busy to the end (install alone takes 18 s).
    set_tests_properties(${name}.${stem} PROPERTIES ENVIRONMENT "${environment}" TIMEOUT 900 LABELS "${arg_LABEL}" COST 10)
  endforeach()
endfunction()
