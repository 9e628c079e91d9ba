# SPDX-License-Identifier: MIT
# The Russian texts: the program's own, compiled from the catalogue, and those of Qt.
zorvane_find_qt_tool(ZORVANE_LRELEASE lrelease)

set(catalogue "${PROJECT_SOURCE_DIR}/translations/ZorvaneClient_ru.ts")
set(compiled_catalogue "${CMAKE_CURRENT_BINARY_DIR}/ZorvaneClient_ru.qm")
add_custom_command(OUTPUT "${compiled_catalogue}"
    COMMAND "${ZORVANE_LRELEASE}" -silent "${catalogue}" -qm "${compiled_catalogue}"
    DEPENDS "${catalogue}" COMMENT "Compiling ZorvaneClient_ru.ts" VERBATIM)
zorvane_resource("/translations/ZorvaneClient_ru" "${compiled_catalogue}")

find_file(ZORVANE_QTBASE_RU qtbase_ru.qm PATHS "${zorvane_QT_INSTALL_TRANSLATIONS}" NO_DEFAULT_PATH
    DOC "Qt's own texts in Russian")
if(NOT ZORVANE_QTBASE_RU)
    message(FATAL_ERROR "${zorvane_QT_INSTALL_TRANSLATIONS} has no qtbase_ru.qm. Install the package "
        "qttranslations5-l10n, or qt6-translations-l10n for Qt 6.")
endif()
zorvane_resource("/translations/qtbase_ru" "${ZORVANE_QTBASE_RU}")
