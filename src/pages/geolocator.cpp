// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "geolocator.h"

#include "settings.h"

#include <QCoreApplication>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>

GeoLocator::GeoLocator(QObject *parent) : QObject(parent), network(this) { }

GeoLocator &GeoLocator::instance()
{
    // Owned by the application, so that it goes before the application's
    // own end (a test program's too), not at the end of the process.
    static QPointer<GeoLocator> locator;
    if (!locator)
        locator = new GeoLocator(QCoreApplication::instance());
    return *locator;
}

QNetworkReply *GeoLocator::lookUp()
{
    const QUrl url = Settings().geoLocationServiceUrl();
    if (url.isEmpty())
        return nullptr;
    QNetworkReply *reply = network.get(QNetworkRequest(url));
    // Deleted from the event loop, so that whoever asked reads it first.
    connect(reply, &QNetworkReply::finished, reply, &QObject::deleteLater);
    return reply;
}
