# SPDX-License-Identifier: MIT
# The Russian texts: the program's own, compiled from the catalogue, and those of Qt.
zorvane_find_qt_tool(ZORVANE_LRELEASE lrelease)

# "Later" are the texts that came after the first catalogue was settled.
foreach(catalogue ZorvaneClient_ru ZorvaneClientLater_ru)
    set(source "${PROJECT_SOURCE_DIR}/translations/${catalogue}.ts")
    set(compiled "${CMAKE_CURRENT_BINARY_DIR}/${catalogue}.qm")
    add_custom_command(OUTPUT "${compiled}"
        COMMAND "${ZORVANE_LRELEASE}" -silent "${source}" -qm "${compiled}"
        DEPENDS "${source}" COMMENT "Compiling ${catalogue}.ts" VERBATIM)
    zorvane_resource("/translations/${catalogue}" "${compiled}")
endforeach()

find_file(ZORVANE_QTBASE_RU qtbase_ru.qm PATHS "${zorvane_QT_INSTALL_TRANSLATIONS}" NO_DEFAULT_PATH
    DOC "Qt's own texts in Russian")
if(NOT ZORVANE_QTBASE_RU)
    message(FATAL_ERROR "${zorvane_QT_INSTALL_TRANSLATIONS} has no qtbase_ru.qm. Install the package "
        "qttranslations5-l10n, or qt6-translations-l10n for Qt 6.")
endif()
zorvane_resource("/translations/qtbase_ru" "${ZORVANE_QTBASE_RU}")
