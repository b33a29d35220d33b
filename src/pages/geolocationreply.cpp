// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "geolocationreply.h"

#include <QXmlStreamReader>

bool GeoLocationReply::isEmpty() const
{
    return !ipAddress && !city && !region && !latitude && !longitude;
}

GeoLocationReply parseGeoLocationReply(const QByteArray &body)
{
    GeoLocationReply reply;

    // Decoded first, so the text is UTF-8 whatever the document declares.
    const QString text = QString::fromUtf8(body);
    QXmlStreamReader xml(text);
    if (!xml.readNextStartElement() || xml.name() != QLatin1String("Response"))
        return reply;

    // Only the first level under the root is read; anything else is skipped
    // whole, subtree and all. Text that is not a number reads as 0.
    while (xml.readNextStartElement()) {
        const auto name = xml.name();
        if (name == QLatin1String("Ip"))
            reply.ipAddress = xml.readElementText();
        else if (name == QLatin1String("City"))
            reply.city = xml.readElementText();
        else if (name == QLatin1String("RegionName"))
            reply.region = xml.readElementText();
        else if (name == QLatin1String("Latitude"))
            reply.latitude = xml.readElementText().toFloat();
        else if (name == QLatin1String("Longitude"))
            reply.longitude = xml.readElementText().toFloat();
        else
            xml.skipCurrentElement();
    }
    return reply;
}
