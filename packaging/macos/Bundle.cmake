# The program as macOS wants it: a bundle with its icon and its translations.
set(folder ${CMAKE_SOURCE_DIR}/packaging)
set(icon ${CMAKE_CURRENT_BINARY_DIR}/varno.icns)
add_custom_command(OUTPUT ${icon}
    COMMAND ${folder}/macos/make-icon ${folder}/com.kelbrin.varno.svg ${icon}
    DEPENDS ${folder}/macos/make-icon ${folder}/com.kelbrin.varno.svg VERBATIM)
configure_file(${folder}/macos/Info.plist.in ${CMAKE_CURRENT_BINARY_DIR}/Info.plist @ONLY)
target_sources(varno PRIVATE ${icon})
set_source_files_properties(${icon} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
set_target_properties(varno PROPERTIES
    MACOSX_BUNDLE ON
    MACOSX_BUNDLE_INFO_PLIST ${CMAKE_CURRENT_BINARY_DIR}/Info.plist)
set_property(SOURCE Translation.cpp PROPERTY COMPILE_DEFINITIONS
    "VARNO_INSTALLED_TRANSLATIONS=\"../Resources/translations\""
    "VARNO_BUILT_TRANSLATIONS=\"../../../../translations\"")
