// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "webviewtest.h"

#include <QTest>
#include <QUrl>
#include <QWebEnginePage>
#include <QWebEngineView>

#include <memory>

void RequestRecorder::interceptRequest(QWebEngineUrlRequestInfo &info)
{
    const QUrl url = info.requestUrl();
    if (url.scheme() == QLatin1String("data"))
        return;
    requests.append(url.toString());
    info.block(true);
}

QVariant evaluate(QWebEngineView *view, const QString &script)
{
    struct Outcome
    {
        bool done = false;
        QVariant value;
    };
    // Shared with the callback, which may come after a timeout.
    auto outcome = std::make_shared<Outcome>();
    view->page()->runJavaScript(script, [outcome](const QVariant &result) {
        outcome->value = result;
        outcome->done = true;
    });
    if (!QTest::qWaitFor([&] { return outcome->done; }, webTimeoutMs))
        return QVariant();
    return outcome->value;
}
