# SPDX-License-Identifier: GPL-3.0-or-later
# Copyright 2026 The Ledgerly developers

# Reads CHANGELOG.md (a "## VERSION (YYYY-MM-DD)" heading per release, newest
# first, each followed by "- " items) and writes it in the form of a Debian
# changelog, which is what a Debian package's changelog.gz holds. Sets, in
# the caller's scope, LEDGERLY_RELEASE_DATE (the first heading's date) and
# LEDGERLY_RELEASE_EPOCH (its midnight, UTC, in seconds since 1970), and
# stops when the first heading does not name PROJECT_VERSION.

# Days since 1970-01-01 of a date in the proleptic Gregorian calendar
# (Howard Hinnant's days_from_civil, for years from 0 on).
function(ledgerly_days_since_epoch year month day result)
    set(y ${year})
    if(month LESS_EQUAL 2)
        math(EXPR y "${year} - 1")
    endif()
    math(EXPR era "${y} / 400")
    math(EXPR year_of_era "${y} - ${era} * 400")
    # Months counted from March, so that February's length comes last.
    math(EXPR m "(${month} + 9) % 12")
    math(EXPR day_of_year "(153 * ${m} + 2) / 5 + ${day} - 1")
    math(EXPR day_of_era "${year_of_era} * 365 + ${year_of_era} / 4 - ${year_of_era} / 100 + ${day_of_year}")
    math(EXPR days "${era} * 146097 + ${day_of_era} - 719468")
    set(${result} ${days} PARENT_SCOPE)
endfunction()

function(ledgerly_debian_changelog markdown output package maintainer)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${markdown}")
    file(STRINGS "${markdown}" lines ENCODING UTF-8)
    set(weekdays Thu Fri Sat Sun Mon Tue Wed)
    set(months Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec)
    set(text "")
    set(trailer "")
    set(first_version "")
    foreach(line IN LISTS lines)
        if(line MATCHES "^## ([0-9][0-9A-Za-z.+~]*) \\(([0-9][0-9][0-9][0-9])-([0-9][0-9])-([0-9][0-9])\\)$")
            set(version "${CMAKE_MATCH_1}")
            set(year "${CMAKE_MATCH_2}")
            math(EXPR month "${CMAKE_MATCH_3}")
            math(EXPR day "${CMAKE_MATCH_4}")
            ledgerly_days_since_epoch(${year} ${month} ${day} days)
            if(NOT first_version)
                set(first_version "${version}")
                set(LEDGERLY_RELEASE_DATE "${CMAKE_MATCH_2}-${CMAKE_MATCH_3}-${CMAKE_MATCH_4}" PARENT_SCOPE)
                math(EXPR epoch "${days} * 86400")
                set(LEDGERLY_RELEASE_EPOCH "${epoch}" PARENT_SCOPE)
            endif()
            math(EXPR weekday "${days} % 7")
            list(GET weekdays ${weekday} weekday_name)
            math(EXPR month_index "${month} - 1")
            list(GET months ${month_index} month_name)
            if(day LESS 10)
                set(day "0${day}")
            endif()
            string(APPEND text "${trailer}${package} (${version}) unstable; urgency=medium\n\n")
            set(trailer "\n -- ${maintainer}  ${weekday_name}, ${day} ${month_name} ${year} 00:00:00 +0000\n\n")
        elseif(NOT first_version)
            # The file's own introduction.
        elseif(line MATCHES "^- (.*)$")
            string(APPEND text "  * ${CMAKE_MATCH_1}\n")
        elseif(line MATCHES "^  (.*)$")
            string(APPEND text "    ${CMAKE_MATCH_1}\n")
        elseif(NOT line STREQUAL "")
            message(FATAL_ERROR "${markdown}: a line that is neither a release heading nor an item: ${line}")
        endif()
    endforeach()
    if(NOT first_version STREQUAL PROJECT_VERSION)
        message(FATAL_ERROR "${markdown} begins with version \"${first_version}\", the project is ${PROJECT_VERSION}: "
                            "add a heading for this release")
    endif()
    string(REGEX REPLACE "\n\n$" "\n" trailer "${trailer}")
    file(WRITE "${output}" "${text}${trailer}")
endfunction()
