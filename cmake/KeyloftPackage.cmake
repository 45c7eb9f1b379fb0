# Installs the package KeyloftCore, which other programs use as follows:
#
#   find_package(KeyloftCore COMPONENTS Relay)          target_link_libraries(… KeyloftCore::Relay)
#   pkg-config --cflags --libs keyloftcore-relay
#
# AuthSession and keyloftcore-authsession are used in the same way and include the relay.

include(CMakePackageConfigHelpers)

set(KEYLOFT_PACKAGE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/KeyloftCore")
set(KEYLOFT_ARCHIVE_DIR "${CMAKE_INSTALL_LIBDIR}/keyloft")
set(KEYLOFT_HEADER_DIR "${CMAKE_INSTALL_INCLUDEDIR}/keyloft")

# keyloft_install_package(COMPONENT TARGETS LIBRARY DEPENDENCY… HEADERS HEADER…)
#
# Installs a component: its library, the libraries of this project that it depends on, and the headers. The libraries
# are static, so that a program does not depend on the installed files at run time.
function(keyloft_install_package component)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "TARGETS;HEADERS")
  list(GET arg_TARGETS 0 own)
  set_target_properties(${own} PROPERTIES EXPORT_NAME ${component})
  set(install_component KeyloftCore${component})

  list(TRANSFORM arg_HEADERS PREPEND "${PROJECT_SOURCE_DIR}/")
  target_sources(${own} PUBLIC FILE_SET HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}" FILES ${arg_HEADERS})
  install(TARGETS ${arg_TARGETS} EXPORT KeyloftCore${component}
    ARCHIVE DESTINATION "${KEYLOFT_ARCHIVE_DIR}" COMPONENT ${install_component}
    FILE_SET HEADERS DESTINATION "${KEYLOFT_HEADER_DIR}" COMPONENT ${install_component}
  )

  install(EXPORT KeyloftCore${component} FILE KeyloftCore${component}Targets.cmake NAMESPACE KeyloftCore::
    DESTINATION "${KEYLOFT_PACKAGE_DIR}" COMPONENT ${install_component})
  configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/KeyloftCoreConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/KeyloftCoreConfig.cmake" INSTALL_DESTINATION "${KEYLOFT_PACKAGE_DIR}")
  write_basic_package_version_file("${PROJECT_BINARY_DIR}/KeyloftCoreConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion)
  install(FILES "${PROJECT_BINARY_DIR}/KeyloftCoreConfig.cmake" "${PROJECT_BINARY_DIR}/KeyloftCoreConfigVersion.cmake"
    "${PROJECT_SOURCE_DIR}/cmake/KeyloftICU.cmake"
    DESTINATION "${KEYLOFT_PACKAGE_DIR}" COMPONENT ${install_component})

  if(KEYLOFT_SYSTEM STREQUAL "linux")
    set(session_packages ", gtk4 >= 4.8, gtk4-x11, x11, libadwaita-1 >= 1.2, webkitgtk-6.0")
  else()
    set(relay_frameworks " -framework Foundation -framework Security")
    set(session_frameworks " -framework AppKit -framework JavaScriptCore -framework QuartzCore -framework WebKit")
  endif()
  # The path is relative to the .pc file, so that the installed tree can be moved.
  file(RELATIVE_PATH up "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
  string(TOLOWER "keyloftcore-${component}" package)
  configure_file("${PROJECT_SOURCE_DIR}/cmake/${package}.pc.in" "${PROJECT_BINARY_DIR}/${package}.pc" @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/${package}.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT ${install_component})
endfunction()
