#include "settings.h"

#include <QString>

Settings::Settings() : settings(QStringLiteral("Ledgerly"), QStringLiteral("Ledgerly")) { }

Settings::~Settings() = default;

QUrl Settings::geoLocationServiceUrl() const
{
    QString text = qEnvironmentVariable("LEDGERLY_GEOLOCATION_URL");
    if (text.isEmpty())
        text = settings.value(QStringLiteral("GeoLocation/ServiceUrl")).toString();
    return QUrl(text.trimmed());
}
