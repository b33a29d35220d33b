// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>

class QJsonArray;
class QJsonValue;
class QWebEngineView;
class RememberedPlaceSpending;

// The history page's map of the places where money was spent: a web view
// showing the places map page, with one circle per remembered place, sized
// by what was spent there. The page is loaded on the first showPlaces(), not
// before, and the places reach it as data (JSON), never as script text.
// The view stays its owner's; the places passed in stay the caller's.
class PlacesMap : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(PlacesMap)

public:
    PlacesMap(QWebEngineView *view, QObject *parent);
    ~PlacesMap() override;

    // Starts loading the map page, unless it is loaded or loading.
    void load();
    // Shows these places in place of those shown before, and fits them all
    // into view (one place: zoom 16 on it; none: the default centre).
    void showPlaces(const QList<RememberedPlaceSpending *> &places);
    // Centres the map on the place of this name and opens its pop-up; false
    // when it is not on the map.
    bool centreOn(const QString &name);

    // The map page: the resource with Leaflet inlined. Empty if it cannot
    // be read.
    static QString pageHtml();
    // The places as the page's showPlaces() takes them.
    static QJsonValue placesData(const QList<RememberedPlaceSpending *> &places);
    // A call of the page's function `function` with these arguments,
    // written as JSON literals that stay harmless wherever script text may
    // end up ("</script>" and the line separators are escaped).
    static QString scriptCall(const QString &function, const QJsonArray &arguments);
    // The radius in pixels of the circle of a place with `total`, where the
    // largest total of the map is `largestTotal`: the circle's area grows
    // with the total, from 6 pixels for nothing to 30 for the largest.
    static double markerRadius(double total, double largestTotal);

private:
    void runWhenLoaded(const QString &script);
    void pageLoaded();

    enum class State { Blank, Loading, Loaded };

    QWebEngineView *view;
    State state;
    QStringList waiting;
    QSet<QString> names;
};
