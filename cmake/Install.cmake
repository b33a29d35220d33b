# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Ledgerly developers

# Installs Ledgerly as a desktop program under the GNU directory layout
# (cmake --install build --prefix /usr, or --prefix ~/.local): the program,
# its menu entry, its icon in the hicolor theme, its AppStream metadata and
# its copyright file. The libraries, tests, benchmarks and scripts stay in
# the build tree.

include(GNUInstallDirs)

# The date of the release that PROJECT_VERSION names, for AppStream.
set(LEDGERLY_RELEASE_DATE "2026-11-23")
# Where docs/screenshots/ is published; the metainfo names history.png,
# new-entry.png and options.png there.
set(LEDGERLY_SCREENSHOT_URL "https://ledgerly.org/docs/screenshots"
    CACHE STRING "Web address of the published docs/screenshots directory")
# Qt on X11 gives every window the class QCoreApplication::applicationName(),
# which main() sets; the menu entry's StartupWMClass has to say the same for
# a desktop to match the window to its entry.
set(LEDGERLY_WM_CLASS "Ledgerly")

set(LEDGERLY_DATA_DIR "${PROJECT_BINARY_DIR}/data")
set(LEDGERLY_DESKTOP_FILE "${LEDGERLY_DATA_DIR}/${LEDGERLY_APP_ID}.desktop")
set(LEDGERLY_METAINFO_FILE "${LEDGERLY_DATA_DIR}/${LEDGERLY_APP_ID}.metainfo.xml")
configure_file("${PROJECT_SOURCE_DIR}/data/ledgerly.desktop.in" "${LEDGERLY_DESKTOP_FILE}" @ONLY)
configure_file("${PROJECT_SOURCE_DIR}/data/ledgerly.metainfo.xml.in" "${LEDGERLY_METAINFO_FILE}" @ONLY)

install(TARGETS ledgerly RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
install(FILES "${LEDGERLY_DESKTOP_FILE}" DESTINATION "${CMAKE_INSTALL_DATADIR}/applications")
install(FILES "${LEDGERLY_METAINFO_FILE}" DESTINATION "${CMAKE_INSTALL_DATADIR}/metainfo")

set(icon_dir "${PROJECT_SOURCE_DIR}/Images/icon")
foreach(size IN ITEMS 16 32 48 64 128 256)
    install(FILES "${icon_dir}/ledgerly-${size}.png"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps"
        RENAME "${LEDGERLY_APP_ID}.png")
endforeach()
install(FILES "${icon_dir}/ledgerly.svg"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps"
    RENAME "${LEDGERLY_APP_ID}.svg")

# The package's name, not the project's: Debian looks for it there.
install(FILES "${PROJECT_SOURCE_DIR}/data/copyright" DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/ledgerly")
