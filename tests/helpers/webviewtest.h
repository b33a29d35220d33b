// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>
#include <QWebEngineUrlRequestInterceptor>

class QWebEngineView;

// What the tests of pages with a web view share.

// How long a test waits for a page: a web engine starting on a busy
// machine takes seconds.
constexpr int webTimeoutMs = 60000;

// Keeps tests off the internet: every request of a page but an inline data:
// one is recorded and blocked, so that every machine runs the page as a
// device without a network does. Install it on the profile the pages use.
class RequestRecorder : public QWebEngineUrlRequestInterceptor
{
public:
    void interceptRequest(QWebEngineUrlRequestInfo &info) override;

    QStringList requests;
};

// Runs a script in the page of `view` and waits for its result: the value
// of its last expression, or an invalid variant when none came in time.
QVariant evaluate(QWebEngineView *view, const QString &script);
