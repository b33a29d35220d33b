// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "tiedentries.h"

#include "rawdatabase.h"

#include <QDateTime>
#include <QRandomGenerator>

#include <cstring>
#include <iterator>

bool writeEntriesWithTiedDateTimes(const QString &fileName)
{
    RawDatabase raw(fileName);
    if (!raw.isOpen() || !raw.exec(QStringLiteral("BEGIN")))
        return false;
    QRandomGenerator random(2411);
    const float prices[] = { 16777216.0f, 1.0f, 3.0f, 0.25f, 1048576.5f, 7.1f };
    for (int i = 0; i < 600; ++i) {
        const QString category = QStringLiteral("Category %1").arg(random.bounded(15));
        const QDateTime when(QDate(2026, 1 + random.bounded(4), 1 + random.bounded(5) * 5), QTime(12, 0));
        const float price = prices[random.bounded(int(std::size(prices)))];
        if (raw.insertEntry(QStringLiteral("Item %1").arg(i), category, when, double(price)) == 0)
            return false;
    }
    for (const char *stored : { "2026-11-14T24:00:00", "2026-11-15T00:00:00" }) {
        if (!raw.exec(QStringLiteral("INSERT INTO Entry (ItemName,CategoryName,CategoryID,TransactDateTime,Price,"
                                     "LocationText,EnableGeoLoc,GeoLocID,GeoLocLongit,GeoLocLatit,ItemID) VALUES "
                                     "('Tea','Drinks',2,'%1',1.5,'Home','false',0,103.0,1.3,0)")
                          .arg(QLatin1String(stored))))
            return false;
    }
    return raw.exec(QStringLiteral("COMMIT"));
}

quint32 bitsOf(float value)
{
    quint32 bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}
