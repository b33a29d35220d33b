# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Ledgerly developers

# The resource bundle "ImageResource": the files that Images/ImageResource.qrc
# lists, compiled uncompressed into the target. The map pages are the files
# made at build time: Leaflet from Debian's libjs-leaflet is inlined into
# them so that they need the network only for their tiles.

set(LEDGERLY_LEAFLET_DIR "/usr/share/javascript/leaflet" CACHE PATH "Directory of Debian's libjs-leaflet")

function(ledgerly_add_image_resource target)
    set(images_dir "${PROJECT_SOURCE_DIR}/Images")
    set(qrc "${images_dir}/ImageResource.qrc")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${qrc}")

    set(map_pages GetStaticGoogleMap.html PlacesMap.html)
    set(leaflet_inputs
        "${LEDGERLY_LEAFLET_DIR}/leaflet.js"
        "${LEDGERLY_LEAFLET_DIR}/leaflet.css"
        "${LEDGERLY_LEAFLET_DIR}/images/marker-icon.png"
        "${LEDGERLY_LEAFLET_DIR}/images/marker-icon-2x.png"
        "${LEDGERLY_LEAFLET_DIR}/images/marker-shadow.png")
    foreach(input IN LISTS leaflet_inputs)
        if(NOT EXISTS "${input}")
            message(FATAL_ERROR "${input} is missing: install Debian's libjs-leaflet (scripts/setup.sh does)")
        endif()
    endforeach()
    foreach(page IN LISTS map_pages)
        add_custom_command(
            OUTPUT "${CMAKE_CURRENT_BINARY_DIR}/generated/${page}"
            COMMAND "${CMAKE_COMMAND}"
                "-DTEMPLATE=${images_dir}/${page}"
                "-DOUTPUT=${CMAKE_CURRENT_BINARY_DIR}/generated/${page}"
                "-DLEAFLET_DIR=${LEDGERLY_LEAFLET_DIR}"
                -P "${PROJECT_SOURCE_DIR}/cmake/InlineMapTemplate.cmake"
            DEPENDS "${images_dir}/${page}" "${PROJECT_SOURCE_DIR}/cmake/InlineMapTemplate.cmake" ${leaflet_inputs}
            COMMENT "Inlining Leaflet into ${page}"
            VERBATIM)
    endforeach()

    # Read the file list from the collection so that the .qrc stays the one
    # place that says what the bundle holds.
    file(READ "${qrc}" qrc_text)
    string(REGEX MATCH "prefix=\"([^\"]*)\"" _ "${qrc_text}")
    set(prefix "${CMAKE_MATCH_1}")
    string(REGEX MATCHALL "<file>[^<]+</file>" entries "${qrc_text}")
    set(files "")
    foreach(entry IN LISTS entries)
        string(REGEX REPLACE "<file>([^<]+)</file>" "\\1" name "${entry}")
        if(name IN_LIST map_pages)
            set(path "${CMAKE_CURRENT_BINARY_DIR}/generated/${name}")
        else()
            set(path "${images_dir}/${name}")
        endif()
        set_source_files_properties("${path}" PROPERTIES QT_RESOURCE_ALIAS "${name}")
        list(APPEND files "${path}")
    endforeach()

    # On a static library qt_add_resources() links the resource's object
    # files into every consumer, so the bundle is registered in each program
    # and test without a Q_INIT_RESOURCE of its own.
    qt_add_resources(${target} "ImageResource"
        PREFIX "${prefix}"
        FILES ${files}
        OPTIONS -no-compress)
endfunction()
