// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "settings.h"

#include "budgetperiod.h"

#include <QString>

#include <utility>

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

SearchFilter Settings::findFilter() const
{
    SearchFilter filter;
    filter.text = settings.value(QStringLiteral("Find/text")).toString();
    if (settings.contains(QStringLiteral("Find/category")))
        filter.category = settings.value(QStringLiteral("Find/category")).toString();
    filter.place = settings.value(QStringLiteral("Find/place")).toString();
    filter.from = QDate::fromString(settings.value(QStringLiteral("Find/from")).toString(), Qt::ISODate);
    filter.to = QDate::fromString(settings.value(QStringLiteral("Find/to")).toString(), Qt::ISODate);
    for (const auto &[key, amount] : { std::pair(QStringLiteral("Find/minimum"), &filter.minimum),
                                       std::pair(QStringLiteral("Find/maximum"), &filter.maximum) }) {
        bool ok = false;
        const double value = settings.value(key).toString().toDouble(&ok);
        if (ok)
            *amount = value;
    }
    return filter;
}

void Settings::setFindFilter(const SearchFilter &filter)
{
    settings.remove(QStringLiteral("Find"));
    const auto keep = [this](const QString &key, const QString &value) {
        if (!value.isEmpty())
            settings.setValue(key, value);
    };
    keep(QStringLiteral("Find/text"), filter.text);
    if (filter.category)
        settings.setValue(QStringLiteral("Find/category"), *filter.category);
    keep(QStringLiteral("Find/place"), filter.place);
    keep(QStringLiteral("Find/from"), filter.from.toString(Qt::ISODate));
    keep(QStringLiteral("Find/to"), filter.to.toString(Qt::ISODate));
    if (filter.minimum)
        settings.setValue(QStringLiteral("Find/minimum"), QString::number(*filter.minimum, 'g', 17));
    if (filter.maximum)
        settings.setValue(QStringLiteral("Find/maximum"), QString::number(*filter.maximum, 'g', 17));
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
