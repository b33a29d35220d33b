#pragma once

#include <QSettings>
#include <QUrl>

// Ledgerly's settings, one accessor per key, kept by QSettings under the
// organisation and application "Ledgerly" (on Linux the file
// ~/.config/Ledgerly/Ledgerly.conf). Only QtCore: the command line reads
// them as the pages do.
class Settings
{
public:
    Settings();
    ~Settings();
    Settings(const Settings &) = delete;
    Settings &operator=(const Settings &) = delete;

    // The IP-geolocation service the new-entry page asks: the environment
    // variable LEDGERLY_GEOLOCATION_URL when it is set and not empty, else
    // the key GeoLocation/ServiceUrl. Empty when neither names one.
    QUrl geoLocationServiceUrl() const;

private:
    QSettings settings;
};
