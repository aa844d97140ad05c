# The backends for macOS. Its libraries are there before any program, so nothing is loaded late.
add_library(varno_platform STATIC
    ${on_every_system}
    macos/CarbonHotKeyEvents.cpp
    macos/CarbonHotKeyEvents.h
    macos/CarbonKeyboard.cpp
    macos/CarbonKeyboard.h
    macos/CoreFoundationValues.cpp
    macos/CoreFoundationValues.h
    macos/DefaultsPreferencesStore.cpp
    macos/DefaultsPreferencesStore.h
    macos/KeychainKeyStore.cpp
    macos/KeychainKeyStore.h
    macos/MacPlatform.cpp
    macos/MacProgramKeys.mm
    macos/MacSystem.cpp
    macos/WorkspaceAnimationSetting.mm
)
target_link_libraries(varno_platform
    PUBLIC Qt6::Core Threads::Threads
    PRIVATE varno_http "-framework AppKit" "-framework Carbon" "-framework Security"
)

find_package(Qt6 6.4 REQUIRED COMPONENTS Gui Widgets)
add_library(varno_platform_desktop STATIC
    LaunchContext.h
    StatusItem.h
    WindowPlacement.h
    macos/ActionTarget.h
    macos/ActionTarget.mm
    macos/MacLaunchContext.mm
    macos/MacStatusItem.mm
    macos/MacWindowPlacement.mm
)
target_link_libraries(varno_platform_desktop PUBLIC varno_platform Qt6::Widgets)
foreach(target varno_platform varno_platform_desktop)
    target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:OBJCXX>:-fobjc-arc>)
endforeach()
