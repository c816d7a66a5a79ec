# How everything here is compiled: the language, the warnings, the sanitizers, the cache.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

option(QORVANE_WERROR "Treat compiler warnings as errors" OFF)
option(QORVANE_BENCHMARKS "Build the measured comparisons under bench/" OFF)
set(QORVANE_SANITIZE "" CACHE STRING "Sanitizers, as -fsanitize takes them (address,undefined or thread)")
# The address of the update server, ending in a slash. The default lies under a reserved top-level domain and answers nobody.
set(QORVANE_UPDATE_BASE_URL "https://updates.qorvane.example/" CACHE STRING "Base URL of the update server")

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual)
add_compile_definitions(QT_NO_CAST_FROM_BYTEARRAY QT_NO_FOREACH QT_NO_KEYWORDS)
if(QORVANE_WERROR)
    add_compile_options(-Werror)
endif()
if(QORVANE_SANITIZE)
    add_compile_options(-fsanitize=${QORVANE_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
    add_link_options(-fsanitize=${QORVANE_SANITIZE})
    # Qt's headers have fences, which the thread sanitizer can't follow; those it misjudges show as reports.
    if(QORVANE_SANITIZE MATCHES "thread" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        add_compile_options(-Wno-tsan)
    endif()
endif()
