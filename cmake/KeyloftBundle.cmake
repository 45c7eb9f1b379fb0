# Packages the application for macOS as a bundle in a disk image (cmake --build … --target package, or cpack).
#
# KEYLOFT_SIGNING_IDENTITY is the identity that signs the bundle. docs/signing.md describes the consequences.

include(KeyloftLeastSystem)

set(KEYLOFT_SIGNING_IDENTITY "-" CACHE STRING "Identity that codesign signs the bundle with; - signs for this machine only")
set(KEYLOFT_MACOS_PACKAGING "${PROJECT_SOURCE_DIR}/Packaging/macos")

set(KEYLOFT_CODESIGN codesign --force --options runtime --sign "${KEYLOFT_SIGNING_IDENTITY}"
    --entitlements "${KEYLOFT_MACOS_PACKAGING}/Keyloft.entitlements")
# Ad hoc signatures cannot have a time stamp.
if(NOT KEYLOFT_SIGNING_IDENTITY STREQUAL "-")
  list(APPEND KEYLOFT_CODESIGN --timestamp)
endif()

# keyloft_bundle(TARGET): builds TARGET as a bundle, and configures CPack to sign the bundle and create the disk image.
function(keyloft_bundle target)
  find_program(ICONUTIL iconutil REQUIRED)
  set(icon "${CMAKE_CURRENT_BINARY_DIR}/Keyloft.icns")
  file(GLOB pictures CONFIGURE_DEPENDS "${KEYLOFT_MACOS_PACKAGING}/Keyloft.iconset/*.png")
  add_custom_command(OUTPUT "${icon}"
    COMMAND "${ICONUTIL}" --convert icns --output "${icon}" "${KEYLOFT_MACOS_PACKAGING}/Keyloft.iconset"
    DEPENDS ${pictures})
  set_source_files_properties("${icon}" PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
  target_sources(${target} PRIVATE "${icon}")

  # Link for the newest macOS that any object is built for. The linker warns about objects built for a newer macOS than
  # its own target, and records the target in the program.
  keyloft_least_system(KEYLOFT_LEAST_SYSTEM "${CMAKE_OSX_DEPLOYMENT_TARGET}" ${ICU_LIBRARIES})
  target_link_options(${target} PRIVATE "-mmacosx-version-min=${KEYLOFT_LEAST_SYSTEM}")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${ICU_LIBRARIES})
  set(plist "${CMAKE_CURRENT_BINARY_DIR}/Info.plist.in")
  configure_file("${KEYLOFT_MACOS_PACKAGING}/Info.plist.in" "${plist}" @ONLY)
  set_target_properties(${target} PROPERTIES
    OUTPUT_NAME Keyloft MACOSX_BUNDLE ON MACOSX_BUNDLE_INFO_PLIST "${plist}")

  install(TARGETS ${target} BUNDLE DESTINATION . COMPONENT Application)
  install(CODE "
    set(bundle \"\${CMAKE_INSTALL_PREFIX}/Keyloft.app\")
    if(DEFINED ENV{DESTDIR})
      set(bundle \"\$ENV{DESTDIR}\${bundle}\")
    endif()
    set(codesign [==[${KEYLOFT_CODESIGN}]==])
    execute_process(COMMAND \${codesign} \"\${bundle}\" COMMAND_ERROR_IS_FATAL ANY)
    " COMPONENT Application)

  if(CMAKE_OSX_ARCHITECTURES)
    string(REPLACE ";" "-" architecture "${CMAKE_OSX_ARCHITECTURES}")
  else()
    set(architecture "${CMAKE_SYSTEM_PROCESSOR}")
  endif()
  # The disk image contains the application only, without the development files of KeyloftCore.
  set(CPACK_GENERATOR DragNDrop)
  set(CPACK_PACKAGE_NAME Keyloft)
  set(CPACK_PACKAGE_VENDOR Keyloft)
  set(CPACK_PACKAGE_FILE_NAME "Keyloft-${PROJECT_VERSION}-${architecture}")
  set(CPACK_DMG_VOLUME_NAME Keyloft)
  set(CPACK_INSTALL_CMAKE_PROJECTS "${PROJECT_BINARY_DIR};Keyloft;Application;/")
  include(CPack)
endfunction()
