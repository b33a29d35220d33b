// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "placesmap.h"

#include "records.h"
#include "format.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QTextStream>
#include <QUrl>
#include <QWebEngineView>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

const double smallestRadius = 6.0;
const double largestRadius = 30.0;

bool isOnTheGlobe(const RememberedPlaceSpending &place)
{
    const double latitude = place.LocationLatitude;
    const double longitude = place.LocationLongitude;
    return std::isfinite(latitude) && std::isfinite(longitude) && std::abs(latitude) <= 90.0 &&
        std::abs(longitude) <= 180.0;
}

} // namespace

PlacesMap::PlacesMap(QWebEngineView *view, QObject *parent) : QObject(parent), view(view), state(State::Blank)
{
    // Connecting makes no web page yet: the engine starts on the first load.
    connect(view, &QWebEngineView::loadFinished, this, &PlacesMap::pageLoaded);
}

PlacesMap::~PlacesMap() = default;

QString PlacesMap::pageHtml()
{
    QFile file(QStringLiteral(":/Images/PlacesMap.html"));
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    QTextStream stream(&file);
    return stream.readAll();
}

double PlacesMap::markerRadius(double total, double largestTotal)
{
    if (!(total > 0.0) || !(largestTotal > 0.0) || !std::isfinite(largestTotal))
        return smallestRadius;
    const double share = std::min(1.0, total / largestTotal);
    return smallestRadius + (largestRadius - smallestRadius) * std::sqrt(share);
}

QJsonValue PlacesMap::placesData(const QList<RememberedPlaceSpending *> &places)
{
    double largestTotal = 0.0;
    for (const RememberedPlaceSpending *place : places)
        largestTotal = std::max(largestTotal, double(place->Total));

    QJsonArray data;
    for (const RememberedPlaceSpending *place : places) {
        // A place the map cannot show is left out; the table still lists
        // what was spent there.
        if (!isOnTheGlobe(*place))
            continue;
        data.append(QJsonObject {
            { QStringLiteral("name"), place->LocationName },
            { QStringLiteral("lat"), double(place->LocationLatitude) },
            { QStringLiteral("lng"), double(place->LocationLongitude) },
            { QStringLiteral("radius"), markerRadius(place->Total, largestTotal) },
            { QStringLiteral("lines"),
              QJsonArray { tr("Entries: %1").arg(place->NumberOfEntries),
                           tr("Total: %1").arg(Format::number(place->Total)) } },
        });
    }
    return data;
}

QString PlacesMap::scriptCall(const QString &function, const QJsonArray &arguments)
{
    // The arguments as one JSON array, whose brackets then enclose the call's
    // argument list.
    QString literal = QString::fromUtf8(QJsonDocument(arguments).toJson(QJsonDocument::Compact));
    // Inside JSON a "<" stands only in a string, where "\u003c" reads the
    // same; so does a line or paragraph separator, which older script
    // engines take for the end of a line.
    literal.replace(QLatin1Char('<'), QLatin1String("\\u003c"));
    literal.replace(QChar(0x2028), QLatin1String("\\u2028"));
    literal.replace(QChar(0x2029), QLatin1String("\\u2029"));
    return function + QLatin1Char('(') + literal.mid(1, literal.size() - 2) + QLatin1String(");");
}

void PlacesMap::showPlaces(const QList<RememberedPlaceSpending *> &places)
{
    const QJsonValue data = placesData(places);
    names.clear();
    for (const QJsonValue &place : data.toArray())
        names.insert(place.toObject().value(QStringLiteral("name")).toString());
    // Only the newest places matter to a page still loading.
    waiting.clear();
    runWhenLoaded(scriptCall(QStringLiteral("showPlaces"), QJsonArray { data }));
}

bool PlacesMap::centreOn(const QString &name)
{
    if (!names.contains(name))
        return false;
    runWhenLoaded(scriptCall(QStringLiteral("centreOnPlace"), QJsonArray { name }));
    return true;
}

void PlacesMap::load()
{
    if (state != State::Blank)
        return;
    state = State::Loading;
    view->setHtml(pageHtml(), QUrl());
}

void PlacesMap::runWhenLoaded(const QString &script)
{
    if (state == State::Loaded) {
        view->page()->runJavaScript(script);
        return;
    }
    waiting.append(script);
    load();
}

void PlacesMap::pageLoaded()
{
    if (state != State::Loading)
        return;
    state = State::Loaded;
    const QStringList scripts = std::exchange(waiting, {});
    for (const QString &script : scripts)
        view->page()->runJavaScript(script);
}
