// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include "databasemanager.h"

#include <QDateTime>
#include <QString>

// Entries as the exchange tests write them: the fields a file carries, in
// the order a CSV line gives them, and the local moments they happen at.
QDateTime at(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);
Entry makeEntry(const QDateTime &when, const QString &item, const QString &category, float price,
                const QString &place = QStringLiteral("Shop"), bool geo = false, float longitude = 103.0f,
                float latitude = 1.3f);
