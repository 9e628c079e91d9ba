# SPDX-License-Identifier: MIT
# Renders the icons and writes the resource collections.
#
# zorvane_colour(name css-colour [more css])   names a colour for icons
# zorvane_icons(prefix normal hover names...)  svg/<prefix>/<name>.svg becomes name.png and
#                                              name@2x.png in colour `normal`, and unless
#                                              `hover` is NONE name_hover.png, name_hover@2x.png
# zorvane_resource(path file)                  adds a file under its resource path
# zorvane_write_qrc(name.qrc)                  compiles what was added since the last call
find_program(ZORVANE_RSVG_CONVERT rsvg-convert DOC "Renders the icons")
if(NOT ZORVANE_RSVG_CONVERT)
    message(FATAL_ERROR "rsvg-convert is missing. Install the package librsvg2-bin.")
endif()

set(zorvane_rendered_dir "${CMAKE_CURRENT_BINARY_DIR}/rendered")
set(zorvane_resource_entries "")
set(zorvane_resource_files "")
set(zorvane_resource_sources "")

function(zorvane_colour name colour)
    string(JOIN "\n" rules "svg { color: ${colour}; }" ${ARGN})
    file(CONFIGURE OUTPUT "${CMAKE_CURRENT_BINARY_DIR}/colours/${name}.css"
        CONTENT "${rules}\n" @ONLY)
endfunction()

macro(zorvane_resource path file)
    string(APPEND zorvane_resource_entries "<file alias=\"${path}\">${file}</file>\n")
    list(APPEND zorvane_resource_files "${file}")
endmacro()

macro(zorvane_icons prefix normal hover)
    foreach(icon ${ARGN})
        zorvane_render_icon(${prefix} ${icon} ${normal} ${hover})
    endforeach()
endmacro()

macro(zorvane_render_icon prefix icon normal hover)
    set(source "${CMAKE_CURRENT_SOURCE_DIR}/svg/${prefix}/${icon}.svg")
    set(sheets "")
    set(pictures "")
    set(commands "")
    foreach(form "${normal}:" "${hover}:_hover")
        string(REGEX MATCH "^([^:]*):(.*)$" form "${form}")
        set(colour "${CMAKE_MATCH_1}")
        set(suffix "${CMAKE_MATCH_2}")
        if(NOT colour STREQUAL "NONE")
            set(sheet "${CMAKE_CURRENT_BINARY_DIR}/colours/${colour}.css")
            list(APPEND sheets "${sheet}")
            foreach(zoom 1 2)
                set(file "${icon}${suffix}.png")
                if(zoom EQUAL 2)
                    set(file "${icon}${suffix}@2x.png")
                endif()
                set(picture "${zorvane_rendered_dir}/${prefix}/${file}")
                list(APPEND pictures "${picture}")
                list(APPEND commands COMMAND ${ZORVANE_RSVG_CONVERT} --zoom ${zoom}
                    --stylesheet "${sheet}" --output "${picture}" "${source}")
                zorvane_resource("/${prefix}/${file}" "${picture}")
            endforeach()
        endif()
    endforeach()
    file(MAKE_DIRECTORY "${zorvane_rendered_dir}/${prefix}")
    add_custom_command(OUTPUT ${pictures} ${commands}
        DEPENDS "${source}" ${sheets}
        COMMENT "Rendering ${prefix}/${icon}" VERBATIM)
endmacro()

macro(zorvane_write_qrc collection)
    set(qrc "${CMAKE_CURRENT_BINARY_DIR}/${collection}")
    file(CONFIGURE OUTPUT "${qrc}" @ONLY
        CONTENT "<RCC><qresource>\n${zorvane_resource_entries}</qresource></RCC>\n")
    get_filename_component(collection_name "${collection}" NAME_WE)
    set(compiled "${CMAKE_CURRENT_BINARY_DIR}/qrc_${collection_name}.cpp")
    add_custom_command(OUTPUT "${compiled}"
        COMMAND Qt${QT_VERSION_MAJOR}::rcc --no-compress --name ${collection_name}
            --output "${compiled}" "${qrc}"
        DEPENDS "${qrc}" ${zorvane_resource_files}
        COMMENT "Compiling ${collection}" VERBATIM)
    list(APPEND zorvane_resource_sources "${compiled}")
    set(zorvane_resource_entries "")
    set(zorvane_resource_files "")
endmacro()
