# SPDX-License-Identifier: MIT
# Finds Qt 5 or 6, as ZORVANE_QT says; targets are used as Qt${QT_VERSION_MAJOR}::Name.
set(QT_VERSION_MAJOR ${ZORVANE_QT})
set(zorvane_qt_components Core Gui Widgets Network DBus)
if(ZORVANE_TESTS OR ZORVANE_BENCH)
    list(APPEND zorvane_qt_components Test)
endif()
find_package(Qt${QT_VERSION_MAJOR} REQUIRED COMPONENTS ${zorvane_qt_components})

# Qt 6 tells each test its folders, which none asks for and which would keep it from the header
# that is compiled once for all tests.
if(TARGET Qt6::Test)
    set_target_properties(Qt6::Test PROPERTIES INTERFACE_COMPILE_DEFINITIONS QT_TESTLIB_LIB)
endif()

# Where this Qt keeps its tools and its own translations.
get_target_property(zorvane_qmake Qt${QT_VERSION_MAJOR}::qmake LOCATION)
foreach(place QT_HOST_BINS QT_INSTALL_TRANSLATIONS)
    execute_process(COMMAND "${zorvane_qmake}" -query ${place}
        OUTPUT_VARIABLE zorvane_${place} OUTPUT_STRIP_TRAILING_WHITESPACE
        COMMAND_ERROR_IS_FATAL ANY)
endforeach()

# zorvane_find_qt_tool(variable name): the full path of a tool that comes beside this Qt.
function(zorvane_find_qt_tool variable name)
    find_program(${variable} ${name} PATHS "${zorvane_QT_HOST_BINS}" NO_DEFAULT_PATH
        DOC "${name} of Qt ${QT_VERSION_MAJOR}")
    if(NOT ${variable})
        message(FATAL_ERROR "${zorvane_QT_HOST_BINS} has no ${name}. Install the package "
            "qttools5-dev-tools, or qt6-l10n-tools for Qt 6.")
    endif()
endfunction()
