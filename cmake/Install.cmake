# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Ledgerly developers

# Installs Ledgerly as a desktop program under the GNU directory layout
# (cmake --install build --prefix /usr, or --prefix ~/.local): the program,
# its menu entry, its icon in the hicolor theme, its AppStream metadata, its
# manual page, its bash completion, and its copyright and changelog files.
# The libraries, tests, benchmarks and scripts stay in the build tree.

include(GNUInstallDirs)

# Who answers for the package: the Debian changelog's trailer lines and the
# package's Maintainer field.
set(LEDGERLY_MAINTAINER "The Ledgerly developers <maintainers@ledgerly.org>")

# CHANGELOG.md says what each release brings; Debian wants it as
# usr/share/doc/ledgerly/changelog.gz, in its own changelog form and
# compressed to the maximum, without a time stamp. Its first heading is also
# the release date that AppStream and the manual page show.
include("${CMAKE_CURRENT_LIST_DIR}/DebianChangelog.cmake")
set(LEDGERLY_DATA_DIR "${PROJECT_BINARY_DIR}/data")
ledgerly_debian_changelog("${PROJECT_SOURCE_DIR}/CHANGELOG.md" "${LEDGERLY_DATA_DIR}/changelog" ledgerly
                          "${LEDGERLY_MAINTAINER}")
find_program(LEDGERLY_GZIP gzip REQUIRED)
execute_process(COMMAND "${LEDGERLY_GZIP}" -9n --stdout "${LEDGERLY_DATA_DIR}/changelog"
                OUTPUT_FILE "${LEDGERLY_DATA_DIR}/changelog.gz" COMMAND_ERROR_IS_FATAL ANY)
# Where docs/screenshots/ is published; the metainfo names history.png,
# new-entry.png and options.png there.
set(LEDGERLY_SCREENSHOT_URL "https://ledgerly.org/docs/screenshots"
    CACHE STRING "Web address of the published docs/screenshots directory")
# Qt on X11 gives every window the class QCoreApplication::applicationName(),
# which main() sets; the menu entry's StartupWMClass has to say the same for
# a desktop to match the window to its entry.
set(LEDGERLY_WM_CLASS "Ledgerly")

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

# The package's name, not the project's: Debian looks for them there.
install(FILES "${PROJECT_SOURCE_DIR}/data/copyright" "${LEDGERLY_DATA_DIR}/changelog.gz"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/ledgerly")

# The manual page, ledgerly(1), made from the built program's --help and
# --version by help2man, with data/ledgerly.h2m for what the help does not
# say (files, environment, examples): a command or option added to the
# program is in the page at the next build. HOME=~ makes the help name the
# database as ~/ledgerlydatabase.db rather than the builder's home, and the
# release date stands in for the build's date so that the page is the same
# from build to build.
find_program(LEDGERLY_HELP2MAN help2man REQUIRED)
# A sanitizer build's program would fail on Qt's allocations kept until exit,
# which are no concern of the page.
set(sanitizer_environment "")
if(LEDGERLY_SANITIZE OR LEDGERLY_FUZZ)
    set(sanitizer_environment "ASAN_OPTIONS=detect_leaks=0")
endif()
set(LEDGERLY_MANUAL_PAGE "${LEDGERLY_DATA_DIR}/ledgerly.1")
set(LEDGERLY_MANUAL_PAGE_INCLUDE "${PROJECT_SOURCE_DIR}/data/ledgerly.h2m")
add_custom_command(OUTPUT "${LEDGERLY_MANUAL_PAGE}.gz"
    COMMAND "${CMAKE_COMMAND}" -E env --unset=DISPLAY --unset=WAYLAND_DISPLAY --unset=QT_QPA_PLATFORM
        "HOME=~" "SOURCE_DATE_EPOCH=${LEDGERLY_RELEASE_EPOCH}" LC_ALL=C.UTF-8 ${sanitizer_environment}
        "${LEDGERLY_HELP2MAN}" --no-info --section=1 "--include=${LEDGERLY_MANUAL_PAGE_INCLUDE}"
        "--output=${LEDGERLY_MANUAL_PAGE}" "$<TARGET_FILE:ledgerly>"
    COMMAND "${LEDGERLY_GZIP}" -9nf "${LEDGERLY_MANUAL_PAGE}"
    DEPENDS ledgerly "${LEDGERLY_MANUAL_PAGE_INCLUDE}"
    COMMENT "Writing the manual page ledgerly(1) from ledgerly --help"
    VERBATIM)
add_custom_target(ledgerly_manual_page ALL DEPENDS "${LEDGERLY_MANUAL_PAGE}.gz")
install(FILES "${LEDGERLY_MANUAL_PAGE}.gz" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")

# Bash completion, where bash-completion looks for it under the prefix (its
# completionsdir, relative to its own prefix), named after the command so
# that it loads the first time ledgerly is completed.
set(LEDGERLY_COMPLETIONS_DIR "${CMAKE_INSTALL_DATADIR}/bash-completion/completions")
find_package(PkgConfig QUIET)
if(PKG_CONFIG_FOUND)
    pkg_get_variable(completions_dir bash-completion completionsdir)
    pkg_get_variable(completions_prefix bash-completion prefix)
    if(completions_dir AND completions_prefix)
        file(RELATIVE_PATH LEDGERLY_COMPLETIONS_DIR "${completions_prefix}" "${completions_dir}")
    endif()
endif()
install(FILES "${PROJECT_SOURCE_DIR}/data/ledgerly.bash" DESTINATION "${LEDGERLY_COMPLETIONS_DIR}" RENAME ledgerly)
