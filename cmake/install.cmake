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

# velmora_install_program(TARGET NAME COMPONENT): the program with its texts.
function(velmora_install_program target name component)
  install(TARGETS ${target} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${component})
  velmora_install_texts(${target} $<TARGET_FILE:${target}> ${name} ${component})
endfunction()

# velmora_install_texts(DEPENDS PROGRAM NAME COMPONENT): man page and completion, both made from the program's own --help.
find_program(VELMORA_GZIP gzip)
function(velmora_install_texts depends program name component)
  if(CMAKE_CROSSCOMPILING)
    return()
  endif()
  set(folder ${velmora_BINARY_DIR}/texts)
  set(page ${folder}/${name}.1)
  add_custom_command(OUTPUT ${page} ${folder}/${name}.bash
    COMMAND ${CMAKE_COMMAND} -DPROGRAM=${program} -DNAME=${name} -DVERSION=${velmora_VERSION} -DFOLDER=${folder}
            -P ${velmora_SOURCE_DIR}/cmake/program_texts.cmake
    DEPENDS ${depends} ${velmora_SOURCE_DIR}/cmake/program_texts.cmake VERBATIM)
  set(texts ${folder}/${name}.bash ${page})
  if(VELMORA_GZIP)
    add_custom_command(OUTPUT ${page}.gz COMMAND ${VELMORA_GZIP} -9nkf ${page} DEPENDS ${page} VERBATIM)
    set(page ${page}.gz)
    list(APPEND texts ${page})
  endif()
  add_custom_target(${name}_texts ALL DEPENDS ${texts})
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
  # Found beside its Snakefile, wherever the prefix is.
  set(workflow ${velmora_SOURCE_DIR}/stack)
  install(FILES ${workflow}/Snakefile ${workflow}/pair_run.py ${workflow}/stack_report.py
    DESTINATION ${CMAKE_INSTALL_DATADIR}/velmora/stack COMPONENT companions)
  install(PROGRAMS ${workflow}/velmora-stack DESTINATION ${CMAKE_INSTALL_DATADIR}/velmora/stack COMPONENT companions)
  install(DIRECTORY ${workflow}/profiles DESTINATION ${CMAKE_INSTALL_DATADIR}/velmora/stack COMPONENT companions
    USE_SOURCE_PERMISSIONS)
  file(MAKE_DIRECTORY ${velmora_BINARY_DIR}/links)
  file(CREATE_LINK ../${CMAKE_INSTALL_DATADIR}/velmora/stack/velmora-stack ${velmora_BINARY_DIR}/links/velmora-stack SYMBOLIC)
  install(FILES ${velmora_BINARY_DIR}/links/velmora-stack DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT companions)
  velmora_install_texts(${workflow}/velmora-stack ${workflow}/velmora-stack velmora-stack companions)
endif()

install(DIRECTORY ${velmora_SOURCE_DIR}/docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT processor)
install(FILES ${velmora_SOURCE_DIR}/README.md ${velmora_SOURCE_DIR}/CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR}
  COMPONENT processor)
