// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "fuzzdriver.h"
#include "geolocationreply.h"

#include <QByteArray>

#include <cstdio>
#include <cstdlib>
#include <cstring>

// Whatever the geolocation service answers: no crash, no hang, no undefined
// behaviour, no leak; and the same body always reads the same.

namespace {

bool same(const GeoLocationReply &a, const GeoLocationReply &b)
{
    // Numbers compare by their bits: a NaN read twice is the same answer.
    const auto sameNumber = [](const std::optional<float> &x, const std::optional<float> &y) {
        return x.has_value() == y.has_value() && (!x || std::memcmp(&*x, &*y, sizeof(float)) == 0);
    };
    return a.ipAddress == b.ipAddress && a.city == b.city && a.region == b.region &&
        sameNumber(a.latitude, b.latitude) && sameNumber(a.longitude, b.longitude);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray body(reinterpret_cast<const char *>(data), qsizetype(size));
    const GeoLocationReply first = parseGeoLocationReply(body);
    if (!same(first, parseGeoLocationReply(body))) {
        std::fprintf(stderr, "The same reply read twice gave two answers\n");
        std::abort();
    }
    return 0;
}
