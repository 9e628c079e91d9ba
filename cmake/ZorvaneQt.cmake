# SPDX-License-Identifier: MIT
# Finds Qt 5 or 6, as ZORVANE_QT says; targets are used as Qt${QT_VERSION_MAJOR}::Name.
set(QT_VERSION_MAJOR ${ZORVANE_QT})
set(zorvane_qt_components Core Gui Widgets Network)
if(ZORVANE_TESTS OR ZORVANE_BENCH)
    list(APPEND zorvane_qt_components Test)
endif()
find_package(Qt${QT_VERSION_MAJOR} REQUIRED COMPONENTS ${zorvane_qt_components})
