// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

// What one reply of the IP-geolocation service said. Only the children of
// the root "Response" that were present are set; a later child of the same
// name replaces an earlier one. A body that is not XML, or whose root is not
// "Response", yields nothing.
struct GeoLocationReply
{
    std::optional<QString> ipAddress;
    std::optional<QString> city;
    std::optional<QString> region;
    std::optional<float> latitude;
    std::optional<float> longitude;

    bool isEmpty() const;
};

// Reads the body of a reply (UTF-8 XML) without touching any page state, so
// that it can be checked, and fuzzed, on its own.
GeoLocationReply parseGeoLocationReply(const QByteArray &body);
