# Installs the application on Linux, and creates Debian packages of it and of KeyloftCore (cmake --build … --target
# package).

set(KEYLOFT_LINUX_PACKAGING "${PROJECT_SOURCE_DIR}/Packaging/linux")

# keyloft_compress(FILE): writes a compressed copy of FILE to the build folder, with .gz appended to its name.
function(keyloft_compress file)
  get_filename_component(name "${file}" NAME)
  execute_process(COMMAND gzip -9nc "${file}" OUTPUT_FILE "${PROJECT_BINARY_DIR}/${name}.gz" COMMAND_ERROR_IS_FATAL ANY)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
endfunction()

# keyloft_package_list(VARIABLE PATTERN GROUP…): sets VARIABLE to a Debian dependency list of the packages in the groups
# whose names match PATTERN.
function(keyloft_package_list variable pattern)
  execute_process(COMMAND "${PROJECT_SOURCE_DIR}/Packaging/install" --list ${ARGN}
    OUTPUT_VARIABLE names COMMAND_ERROR_IS_FATAL ANY)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/Packaging/packages")
  string(REGEX MATCHALL "${pattern}" names "${names}")
  list(JOIN names ", " names)
  set(${variable} "${names}" PARENT_SCOPE)
endfunction()

# keyloft_debian_packages(TARGET): installs TARGET with its desktop files, and configures CPack to create the packages.
function(keyloft_debian_packages target)
  set(id velde.orvane.keyloft)
  set(data "${CMAKE_INSTALL_DATADIR}")
  set(icons "${PROJECT_SOURCE_DIR}/Platform/AppKit/linux/resources/icons")
  keyloft_compress("${KEYLOFT_LINUX_PACKAGING}/changelog")
  keyloft_compress("${KEYLOFT_LINUX_PACKAGING}/keyloft.1")
  set(metainfo "${PROJECT_BINARY_DIR}/${id}.metainfo.xml")
  configure_file("${KEYLOFT_LINUX_PACKAGING}/${id}.metainfo.xml.in" "${metainfo}" @ONLY)

  set(component COMPONENT Program)
  install(TARGETS ${target} ${component})
  install(FILES "${KEYLOFT_LINUX_PACKAGING}/${id}.desktop" DESTINATION "${data}/applications" ${component})
  install(FILES "${metainfo}" DESTINATION "${data}/metainfo" ${component})
  install(FILES "${icons}/scalable/apps/${id}.svg" DESTINATION "${data}/icons/hicolor/scalable/apps" ${component})
  install(FILES "${icons}/symbolic/apps/${id}-symbolic.svg" DESTINATION "${data}/icons/hicolor/symbolic/apps" ${component})
  install(FILES "${PROJECT_BINARY_DIR}/keyloft.1.gz" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" ${component})
  install(FILES "${KEYLOFT_LINUX_PACKAGING}/${id}.service" DESTINATION "${data}/dbus-1/services" ${component})

  foreach(package Program:keyloft KeyloftCoreRelay:libkeyloftcore-dev)
    string(REPLACE ":" ";" package "${package}")
    list(POP_FRONT package owner)
    install(FILES "${PROJECT_BINARY_DIR}/changelog.gz" DESTINATION "${data}/doc/${package}" COMPONENT ${owner})
    install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" RENAME copyright
      DESTINATION "${data}/doc/${package}" COMPONENT ${owner})
  endforeach()

  set(CPACK_GENERATOR DEB)
  set(CPACK_PACKAGE_CONTACT "Keyloft developers <developers@keyloft.orvane.velde>")
  set(CPACK_STRIP_FILES ON)
  set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package sets its own
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEB_COMPONENT_INSTALL ON)
  set(CPACK_COMPONENTS_ALL Program KeyloftCoreRelay KeyloftCoreAuthSession)

  set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME keyloft)
  set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION web)
  set(CPACK_DEBIAN_PROGRAM_DESCRIPTION "small tabbed web browser
Keyloft is a web browser with tabs, an address field, a search field and a
bookmarks bar.")
  set(CPACK_DEBIAN_PROGRAM_PACKAGE_SHLIBDEPS ON)
  keyloft_package_list(CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS "[^\n]+" run)

  set(CPACK_COMPONENT_KEYLOFTCORERELAY_GROUP Development)
  set(CPACK_COMPONENT_KEYLOFTCOREAUTHSESSION_GROUP Development)
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libkeyloftcore-dev)
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
  set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "web sign-in and its relay to other programs (development files)
Headers, static libraries, CMake package and pkg-config files of KeyloftCore,
which completes a Sign in with Apple authorization and relays its result.")
  keyloft_package_list(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "lib[^\n]+-dev|pkg-config" build)
  include(CPack)
endfunction()
