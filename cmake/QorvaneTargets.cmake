# One shape for every library and every test, so that a folder's CMakeLists.txt only names its files.

# qorvane_add_library(<name> SOURCES <files...> [PUBLIC <targets...>] [PRIVATE <targets...>])
# A static library whose headers are reached as "<folder>/<Header>.h" from the source root.
function(qorvane_add_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}/Qorvane")
    target_link_libraries(${name} PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE})
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
endfunction()

# qorvane_add_test(<Name> SOURCES <files...> LIBRARIES <targets...> [TIMEOUT <seconds>])
# One GoogleTest program per class. Its main() comes from QorvaneTestSupport: it moves HOME and every XDG
# folder to a temporary place, so that no test can see or touch the user's library.
function(qorvane_add_test name)
    cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LIBRARIES" ${ARGN})
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 120)
    endif()
    if(QORVANE_SANITIZE MATCHES "thread")
        math(EXPR ARG_TIMEOUT "${ARG_TIMEOUT} * 8") # decoders run ten times slower
    endif()
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} QorvaneTestSupport)
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT})
endfunction()

# qorvane_add_test_again(<Name> <Suffix> <VARIABLE=value...>)
# The same program under another environment, as a test of its own.
function(qorvane_add_test_again name suffix)
    get_test_property(${name} TIMEOUT timeout)
    add_test(NAME ${name}${suffix} COMMAND ${name})
    set_tests_properties(${name}${suffix} PROPERTIES TIMEOUT ${timeout} ENVIRONMENT "${ARGN}")
endfunction()

# qorvane_quiet_generated_qml(<target>)
# The code that Qt's QML compiler writes shadows its own arguments; our warnings are for our code.
function(qorvane_quiet_generated_qml target)
    get_target_property(sources ${target} SOURCES)
    list(FILTER sources INCLUDE REGEX "/qmlcache/.*\\.cpp$")
    set_source_files_properties(${sources} PROPERTIES COMPILE_OPTIONS "-Wno-shadow")
endfunction()
