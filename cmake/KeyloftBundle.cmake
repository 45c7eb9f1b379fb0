# The application on macOS: a bundle, and a disk image of it (cmake --build … --target package, or cpack).
#
# KEYLOFT_SIGNING_IDENTITY is whose signature the bundle bears; docs/signing.md says what follows from it.

set(KEYLOFT_SIGNING_IDENTITY "-" CACHE STRING "Whom codesign signs the bundle for; - signs for this machine alone")
set(KEYLOFT_MACOS_PACKAGING "${PROJECT_SOURCE_DIR}/Packaging/macos")

# Libraries that are not the system's may be loaded under the hardened runtime only if the same team signed them, which a
# signature for this machine alone does not tell.
set(KEYLOFT_CODESIGN codesign --force --sign "${KEYLOFT_SIGNING_IDENTITY}"
    --entitlements "${KEYLOFT_MACOS_PACKAGING}/Keyloft.entitlements")
if(NOT KEYLOFT_SIGNING_IDENTITY STREQUAL "-")
  list(APPEND KEYLOFT_CODESIGN --options runtime --timestamp)
endif()

# keyloft_bundle(TARGET)
function(keyloft_bundle target)
  find_program(ICONUTIL iconutil REQUIRED)
  set(icon "${CMAKE_CURRENT_BINARY_DIR}/Keyloft.icns")
  file(GLOB pictures CONFIGURE_DEPENDS "${KEYLOFT_MACOS_PACKAGING}/Keyloft.iconset/*.png")
  add_custom_command(OUTPUT "${icon}"
    COMMAND "${ICONUTIL}" --convert icns --output "${icon}" "${KEYLOFT_MACOS_PACKAGING}/Keyloft.iconset"
    DEPENDS ${pictures})
  set_source_files_properties("${icon}" PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
  target_sources(${target} PRIVATE "${icon}")

  set(plist "${CMAKE_CURRENT_BINARY_DIR}/Info.plist.in")
  configure_file("${KEYLOFT_MACOS_PACKAGING}/Info.plist.in" "${plist}" @ONLY)
  set_target_properties(${target} PROPERTIES
    OUTPUT_NAME Keyloft MACOSX_BUNDLE ON MACOSX_BUNDLE_INFO_PLIST "${plist}")

  install(TARGETS ${target} BUNDLE DESTINATION . COMPONENT Application)
  # What is not the system's goes into the bundle, which is signed after that.
  install(CODE "
    include(BundleUtilities)
    set(bundle \"\${CMAKE_INSTALL_PREFIX}/Keyloft.app\")
    if(DEFINED ENV{DESTDIR})
      set(bundle \"\$ENV{DESTDIR}\${bundle}\")
    endif()
    fixup_bundle(\"\${bundle}\" \"\" \"\")
    set(codesign [==[${KEYLOFT_CODESIGN}]==])
    file(GLOB libraries \"\${bundle}/Contents/Frameworks/*.dylib\")
    foreach(part IN LISTS libraries ITEMS \"\${bundle}\")
      execute_process(COMMAND \${codesign} \"\${part}\" COMMAND_ERROR_IS_FATAL ANY)
    endforeach()
    " COMPONENT Application)

  # The disk image holds the application alone, not what programs that link the core need.
  set(CPACK_GENERATOR DragNDrop)
  set(CPACK_PACKAGE_NAME Keyloft)
  set(CPACK_PACKAGE_VENDOR Keyloft)
  set(CPACK_PACKAGE_FILE_NAME "Keyloft-${PROJECT_VERSION}")
  set(CPACK_DMG_VOLUME_NAME Keyloft)
  set(CPACK_INSTALL_CMAKE_PROJECTS "${PROJECT_BINARY_DIR};Keyloft;Application;/")
  include(CPack)
endfunction()
