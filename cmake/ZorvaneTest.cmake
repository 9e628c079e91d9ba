# SPDX-License-Identifier: MIT
# What every test program is given beside its folder.
set(zorvane_test_environment
    "QT_QPA_PLATFORM=offscreen"
    "QT_LOGGING_RULES="
    "SDL_AUDIODRIVER=dummy"
    "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/leaks.supp:print_suppressions=0"
    "TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/threads.supp")

# zorvane_add_test(Name SOURCES a.cpp... LIBRARIES lib... [TIMEOUT seconds] [NEEDS target...])
# Builds a QtTest program and gives it to CTest. It runs without a display, in a fresh
# folder of its own, with the home and cache folders inside that folder. Programs named
# in NEEDS are built before it.
function(zorvane_add_test name)
    cmake_parse_arguments(arg "" "TIMEOUT" "SOURCES;LIBRARIES;NEEDS" ${ARGN})
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 120)
    endif()
    add_executable(${name} ${arg_SOURCES})
    set_target_properties(${name} PROPERTIES AUTOMOC ON
        RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests/bin")
    target_link_libraries(${name} PRIVATE zorvane_test_frame ${arg_LIBRARIES})
    target_precompile_headers(${name} REUSE_FROM zorvane_test_frame)
    target_compile_definitions(${name} PRIVATE
        ZORVANE_BIN_DIR="${CMAKE_RUNTIME_OUTPUT_DIRECTORY}"
        ZORVANE_TEST_BIN_DIR="${CMAKE_BINARY_DIR}/tests/bin"
        ZORVANE_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
    if(arg_NEEDS)
        add_dependencies(${name} ${arg_NEEDS})
    endif()
    add_test(NAME ${name}
        COMMAND "${PROJECT_SOURCE_DIR}/tests/support/run-test" $<TARGET_FILE:${name}>)
    set_tests_properties(${name} PROPERTIES TIMEOUT ${arg_TIMEOUT}
        ENVIRONMENT "${zorvane_test_environment}")
endfunction()
