# cmake --install: programs, man pages, bash completion and docs; with the component "development" the libraries that other
# projects may want, as the package velmora (find_package(velmora), targets velmora::time, ...).
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# What others want, and with it all that it uses.
set(targets "")
set(to_visit velmora_time velmora_orbit velmora_geometry velmora_pool velmora_image)
while(to_visit)
  list(POP_FRONT to_visit target)
  if(NOT target IN_LIST targets)
    list(APPEND targets ${target})
    get_target_property(uses ${target} INTERFACE_LINK_LIBRARIES)
    string(REGEX MATCHALL "velmora_[a-z_]+" uses "${uses}")
    list(APPEND to_visit ${uses})
  endif()
endwhile()
install(TARGETS ${targets} EXPORT velmora_targets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
list(REMOVE_ITEM targets velmora_flags)
foreach(target ${targets})
  get_target_property(folder ${target} SOURCE_DIR)
  file(RELATIVE_PATH folder ${velmora_SOURCE_DIR} ${folder})
  install(DIRECTORY ${velmora_SOURCE_DIR}/${folder}/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/velmora/${folder}
    COMPONENT development FILES_MATCHING PATTERN "*.h")
endforeach()
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/velmora)
install(EXPORT velmora_targets NAMESPACE velmora:: DESTINATION ${package_folder} COMPONENT development)
write_basic_package_version_file(${velmora_BINARY_DIR}/velmoraConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${velmora_SOURCE_DIR}/cmake/velmoraConfig.cmake ${velmora_BINARY_DIR}/velmoraConfigVersion.cmake
  DESTINATION ${package_folder} COMPONENT development)

# velmora_install_program(TARGET NAME COMPONENT): the program, its man page and its completion, both made from its own --help.
find_program(VELMORA_GZIP gzip)
function(velmora_install_program target name component)
  install(TARGETS ${target} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${component})
  if(CMAKE_CROSSCOMPILING)
    return()
  endif()
  set(folder ${velmora_BINARY_DIR}/texts)
  set(page ${folder}/${name}.1)
  add_custom_command(OUTPUT ${page} ${folder}/${name}.bash
    COMMAND ${CMAKE_COMMAND} -DPROGRAM=$<TARGET_FILE:${target}> -DNAME=${name} -DVERSION=${velmora_VERSION} -DFOLDER=${folder}
            -P ${velmora_SOURCE_DIR}/cmake/program_texts.cmake
    DEPENDS ${target} ${velmora_SOURCE_DIR}/cmake/program_texts.cmake VERBATIM)
  set(texts ${folder}/${name}.bash ${page})
  if(VELMORA_GZIP)
    add_custom_command(OUTPUT ${page}.gz COMMAND ${VELMORA_GZIP} -9nkf ${page} DEPENDS ${page} VERBATIM)
    set(page ${page}.gz)
    list(APPEND texts ${page})
  endif()
  add_custom_target(${target}_texts ALL DEPENDS ${texts})
  install(FILES ${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT ${component})
  install(FILES ${folder}/${name}.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME ${name}
    COMPONENT ${component})
endfunction()

velmora_install_program(velmora velmora processor)
if(TARGET velmora-view)
  velmora_install_program(velmora-view velmora-view companions)
endif()
if(TARGET velmora_import)
  velmora_install_program(velmora_import velmora-import companions)
endif()

install(DIRECTORY ${velmora_SOURCE_DIR}/docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT processor)
install(FILES ${velmora_SOURCE_DIR}/README.md ${velmora_SOURCE_DIR}/CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR}
  COMPONENT processor)
