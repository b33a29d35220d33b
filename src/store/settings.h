// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "entrysearch.h"

#include <QRect>
#include <QSettings>
#include <QUrl>

// Ledgerly's settings, one accessor per key, kept by QSettings under the
// organisation and application "Ledgerly" (on Linux the file
// ~/.config/Ledgerly/Ledgerly.conf). Only QtCore: the command line reads
// them as the pages do.
class Settings
{
public:
    Settings();
    ~Settings();
    Settings(const Settings &) = delete;
    Settings &operator=(const Settings &) = delete;

    // The IP-geolocation service the new-entry page asks: the environment
    // variable LEDGERLY_GEOLOCATION_URL when it is set and not empty, else
    // the key GeoLocation/ServiceUrl. Empty when neither names one.
    QUrl geoLocationServiceUrl() const;

    // Where the main window was when it last closed, keys
    // MainWindow/geometry (its place and size without the window frame; for
    // a maximised window the place it returns to) and MainWindow/maximized.
    // A null rectangle and false when none was kept.
    QRect mainWindowGeometry() const;
    bool isMainWindowMaximized() const;
    void setMainWindowGeometry(const QRect &geometry, bool maximized);

    // The last filter of the Find page, keys Find/text, Find/category,
    // Find/place, Find/from, Find/to (yyyy-MM-dd), Find/minimum and
    // Find/maximum; a part left out is not kept. An empty filter when none
    // was kept.
    SearchFilter findFilter() const;
    void setFindFilter(const SearchFilter &filter);

    // The name of the look the user picked in the View menu, key View/look;
    // empty when none was picked.
    QString lookName() const;
    void setLookName(const QString &name);
    // The day, from 1 to 28, on which a budget month (and year) begins, key
    // Budgets/monthStart; 1 when none was kept or the kept one is no such
    // day. Setting a day outside 1 to 28 changes nothing and is false.
    int budgetMonthStart() const;
    bool setBudgetMonthStart(int day);

private:
    QSettings settings;
};
