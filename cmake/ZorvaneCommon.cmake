# SPDX-License-Identifier: MIT
# The one compile contract of every target.
find_program(ZORVANE_CCACHE ccache)
if(ZORVANE_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER
        ${CMAKE_COMMAND} -E env CCACHE_NOHASHDIR=1 CCACHE_SLOPPINESS=pch_defines,time_macros
        ${ZORVANE_CCACHE})
endif()

add_library(zorvane_common_config INTERFACE)
target_compile_features(zorvane_common_config INTERFACE cxx_std_17)
target_compile_options(zorvane_common_config INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow $<$<BOOL:${ZORVANE_WERROR}>:-Werror>)
target_include_directories(zorvane_common_config INTERFACE "${PROJECT_SOURCE_DIR}")

# What a target with Qt objects needs besides.
add_library(zorvane_qt_config INTERFACE)
target_link_libraries(zorvane_qt_config INTERFACE zorvane_common_config)
target_compile_definitions(zorvane_qt_config INTERFACE
    QT_NO_CAST_TO_ASCII QT_DEPRECATED_WARNINGS QT_NO_FOREACH)

# zorvane_add_qt_library(name sources...): a static library with moc and uic.
function(zorvane_add_qt_library name)
    add_library(${name} STATIC ${ARGN})
    set_target_properties(${name} PROPERTIES AUTOMOC ON AUTOUIC ON
        AUTOUIC_SEARCH_PATHS "${PROJECT_SOURCE_DIR}/forms")
    target_link_libraries(${name} PUBLIC zorvane_qt_config)
endfunction()
