// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QNetworkAccessManager>
#include <QObject>

class QNetworkReply;

// The program's geolocation lookups, all through one network access manager
// (which keeps its connections, caches and proxy settings for every page).
// Every reply is deleted once finished, failed or not; whoever asked reads
// it when it finishes, before it goes.
class GeoLocator : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(GeoLocator)

public:
    // The one locator of the program, made on first use; it belongs to the
    // application object.
    static GeoLocator &instance();

    // Sends a lookup to the configured service; null when none is set. The
    // reply belongs to the locator.
    QNetworkReply *lookUp();

    QNetworkAccessManager *manager() { return &network; }

private:
    explicit GeoLocator(QObject *parent);

    QNetworkAccessManager network;
};
