# macOS 13 or newer, with Homebrew's libraries.
set(CMAKE_OSX_DEPLOYMENT_TARGET 13.0 CACHE STRING "The oldest macOS that the program runs on")
enable_language(OBJCXX)
set(CMAKE_OBJCXX_STANDARD 20)
set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
# Its standard library has threads that can be stopped, but counts them among its experiments.
add_compile_definitions(_LIBCPP_ENABLE_EXPERIMENTAL)
# What Homebrew does not link into its common folder
find_program(BREW brew REQUIRED)
foreach(formula icu4c openssl@3)
    execute_process(COMMAND ${BREW} --prefix ${formula}
        OUTPUT_VARIABLE prefix OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    list(APPEND CMAKE_PREFIX_PATH ${prefix})
endforeach()
