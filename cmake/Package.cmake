# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Ledgerly developers

# The Debian package, made by CPack from the install rules (see
# scripts/package.sh). Its summary and description are the AppStream
# metainfo's, so that apt and a software centre say the same thing.

file(READ "${LEDGERLY_METAINFO_FILE}" metainfo)
string(REGEX MATCH "<summary>([^<]*)</summary>" _ "${metainfo}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${CMAKE_MATCH_1}")
string(REGEX MATCH "<description>.*</description>" description "${metainfo}")
string(REGEX MATCHALL "<p>[^<]*</p>" paragraphs "${description}")
set(debian_description "")
foreach(paragraph IN LISTS paragraphs)
    string(REGEX REPLACE "</?p>" "" paragraph "${paragraph}")
    string(REGEX REPLACE "\n[ \t]+" "\n" paragraph "${paragraph}")
    string(STRIP "${paragraph}" paragraph)
    if(debian_description)
        string(APPEND debian_description "\n\n")
    endif()
    string(APPEND debian_description "${paragraph}")
endforeach()
if(NOT CPACK_PACKAGE_DESCRIPTION_SUMMARY OR NOT debian_description)
    message(FATAL_ERROR "${LEDGERLY_METAINFO_FILE} has no summary or no description paragraphs")
endif()

set(CPACK_GENERATOR "DEB")
set(CPACK_PACKAGE_NAME "ledgerly")
set(CPACK_PACKAGE_VENDOR "The Ledgerly developers")
set(CPACK_PACKAGE_CONTACT "${LEDGERLY_MAINTAINER}")
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}")
# Debian strips its binaries; the debug information stays in the build tree.
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME "DEB-DEFAULT")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "${debian_description}")
set(CPACK_DEBIAN_PACKAGE_SECTION "utils")
# dpkg-shlibdeps reads the libraries the program links (Qt 6, SQLite, ...)
# and names the packages that provide them.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE "xz")

include(CPack)
