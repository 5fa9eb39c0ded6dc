# What every target is built with.
option(KESTA_TESTS "Build the tests" ON)
option(KESTA_BENCH "Build the benchmarks" OFF)
option(KESTA_FUZZ "Build the fuzzers (needs Clang)" OFF)
option(KESTA_WERROR "Treat warnings as errors" ON)
set(KESTA_SANITIZE "" CACHE STRING "Sanitizers to build with, as in -fsanitize: address,undefined or thread")

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)

if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Debug or Release" FORCE)
endif()

add_library(kesta_options INTERFACE)
target_include_directories(kesta_options INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)
target_compile_options(kesta_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
                       $<$<BOOL:${KESTA_WERROR}>:-Werror>)

# Release builds are hardened: checked calls of the C library, stack canaries, tables that are read-only after the
# start, no executable stack. The sanitizers bring checks of their own.
if(KESTA_SANITIZE)
    target_compile_options(kesta_options INTERFACE -fsanitize=${KESTA_SANITIZE} -fno-sanitize-recover=all
                           -fno-omit-frame-pointer)
    target_link_options(kesta_options INTERFACE -fsanitize=${KESTA_SANITIZE})
elseif(CMAKE_BUILD_TYPE STREQUAL "Release")
    target_compile_options(kesta_options INTERFACE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -fstack-protector-strong)
    target_link_options(kesta_options INTERFACE LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)
endif()
