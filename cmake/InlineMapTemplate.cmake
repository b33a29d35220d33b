# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Ledgerly developers

# cmake -DTEMPLATE=... -DOUTPUT=... -DLEAFLET_DIR=... -P InlineMapTemplate.cmake
#
# Fills the map template's build-time markers with Leaflet's script and style
# and with its marker pictures as data: URLs. A page loaded with an empty base
# URL cannot fetch the pictures from a relative path, so they travel inline.

function(png_data_url path out_var)
    file(READ "${path}" hex HEX)
    string(REGEX REPLACE "([0-9a-f][0-9a-f])" "%\\1" encoded "${hex}")
    set(${out_var} "data:image/png,${encoded}" PARENT_SCOPE)
endfunction()

file(READ "${TEMPLATE}" page)
file(READ "${LEAFLET_DIR}/leaflet.js" leaflet_js)
file(READ "${LEAFLET_DIR}/leaflet.css" leaflet_css)
png_data_url("${LEAFLET_DIR}/images/marker-icon.png" icon_url)
png_data_url("${LEAFLET_DIR}/images/marker-icon-2x.png" icon_2x_url)
png_data_url("${LEAFLET_DIR}/images/marker-shadow.png" shadow_url)

# A "</script>" inside the inlined code would end the element early.
string(REPLACE "</script" "<\\/script" leaflet_js "${leaflet_js}")

string(REPLACE "@LEAFLET_CSS@" "${leaflet_css}" page "${page}")
string(REPLACE "@MARKER_ICON_URL@" "${icon_url}" page "${page}")
string(REPLACE "@MARKER_ICON_2X_URL@" "${icon_2x_url}" page "${page}")
string(REPLACE "@MARKER_SHADOW_URL@" "${shadow_url}" page "${page}")
string(REPLACE "@LEAFLET_JS@" "${leaflet_js}" page "${page}")

foreach(marker IN ITEMS "@LEAFLET_CSS@" "@LEAFLET_JS@" "@MARKER_ICON_URL@" "@MARKER_ICON_2X_URL@" "@MARKER_SHADOW_URL@")
    string(FIND "${page}" "${marker}" leftover)
    if(NOT leftover EQUAL -1)
        message(FATAL_ERROR "${marker} left unfilled in ${OUTPUT}")
    endif()
endforeach()
# file(READ) drops carriage returns; the template's lines end in CRLF.
string(REPLACE "\n" "\r\n" page "${page}")
file(WRITE "${OUTPUT}.tmp" "${page}")
file(RENAME "${OUTPUT}.tmp" "${OUTPUT}")
