# cpack: a Debian package of the processor, which needs the C and C++ run time alone, and one of the companions.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME velmora)
set(VELMORA_PACKAGER "velmora developers <velmora@example.org>" CACHE STRING "Who is named as the packages' maintainer")
set(CPACK_PACKAGE_CONTACT ${VELMORA_PACKAGER})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL processor)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_PROCESSOR_PACKAGE_NAME velmora)
set(CPACK_COMPONENT_PROCESSOR_DESCRIPTION "interferometric phase of bare terrain
Simulates the phase that terrain alone produces in a pair of radar images,
from the orbits of both acquisitions and a terrain model; on request also
shift maps, Earth-fixed coordinates and heights in radar geometry.")
if(TARGET velmora-view OR TARGET velmora_import)
  list(APPEND CPACK_COMPONENTS_ALL companions)
  set(CPACK_DEBIAN_COMPANIONS_PACKAGE_NAME velmora-companions)
  set(CPACK_DEBIAN_COMPANIONS_PACKAGE_DEPENDS python3)
  set(CPACK_DEBIAN_COMPANIONS_PACKAGE_RECOMMENDS velmora)
  set(CPACK_DEBIAN_COMPANIONS_PACKAGE_SUGGESTS snakemake)
  set(CPACK_COMPONENT_COMPANIONS_DESCRIPTION "import and viewing programs of velmora
Bring downloaded terrain models, orbits and annotations into the processor's
form, and show its products as pictures, maps and numbers.")
endif()

# What every Debian package has: who may do what with it, and a changelog of the package.
set(folder ${velmora_BINARY_DIR}/debian)
file(WRITE ${folder}/copyright "Copyright (c) 2026 the velmora developers

The terms are those under which you received the sources; this package adds none.
")
string(TIMESTAMP date "%a, %d %b %Y 12:00:00 +0000" UTC)
foreach(package velmora velmora-companions)
  if(package STREQUAL velmora)
    set(component processor)
  else()
    set(component companions)
  endif()
  file(WRITE ${folder}/${package}/changelog "${package} (${velmora_VERSION}) unstable; urgency=medium

  * See the project's CHANGELOG.md.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")
  set(installed ${folder}/copyright)
  if(VELMORA_GZIP)
    execute_process(COMMAND ${VELMORA_GZIP} -9nkf ${folder}/${package}/changelog COMMAND_ERROR_IS_FATAL ANY)
    list(APPEND installed ${folder}/${package}/changelog.gz)
  endif()
  install(FILES ${installed} DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
endforeach()
include(CPack)
