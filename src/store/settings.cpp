// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "settings.h"

#include "budgetperiod.h"

#include <QString>

namespace {

const char geometryKey[] = "MainWindow/geometry";
const char maximizedKey[] = "MainWindow/maximized";
const char lookKey[] = "View/look";
const char monthStartKey[] = "Budgets/monthStart";

} // namespace

Settings::Settings() : settings(QStringLiteral("Ledgerly"), QStringLiteral("Ledgerly")) { }

Settings::~Settings() = default;

QUrl Settings::geoLocationServiceUrl() const
{
    QString text = qEnvironmentVariable("LEDGERLY_GEOLOCATION_URL");
    if (text.isEmpty())
        text = settings.value(QStringLiteral("GeoLocation/ServiceUrl")).toString();
    return QUrl(text.trimmed());
}

QRect Settings::mainWindowGeometry() const
{
    return settings.value(QLatin1String(geometryKey)).toRect();
}

bool Settings::isMainWindowMaximized() const
{
    return settings.value(QLatin1String(maximizedKey)).toBool();
}

void Settings::setMainWindowGeometry(const QRect &geometry, bool maximized)
{
    settings.setValue(QLatin1String(geometryKey), geometry);
    settings.setValue(QLatin1String(maximizedKey), maximized);
}

QString Settings::lookName() const
{
    return settings.value(QLatin1String(lookKey)).toString();
}

void Settings::setLookName(const QString &name)
{
    settings.setValue(QLatin1String(lookKey), name);
}

int Settings::budgetMonthStart() const
{
    bool isNumber = false;
    const int day = settings.value(QLatin1String(monthStartKey)).toInt(&isNumber);
    return isNumber && BudgetPeriods::isMonthStart(day) ? day : BudgetPeriods::firstMonthStart;
}

bool Settings::setBudgetMonthStart(int day)
{
    if (!BudgetPeriods::isMonthStart(day))
        return false;
    settings.setValue(QLatin1String(monthStartKey), day);
    settings.sync();
    return settings.status() == QSettings::NoError;
}
