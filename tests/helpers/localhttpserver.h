// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#pragma once

#include <QByteArray>
#include <QObject>
#include <QStringList>
#include <QTcpServer>
#include <QUrl>

class QTcpSocket;

// A tiny HTTP/1.1 server on 127.0.0.1 for tests that need a real peer: every
// request gets the same canned reply (status and body), or, in the mode that
// never answers, is read and left hanging until the server goes. Requests
// are counted and their request lines kept.
class LocalHttpServer : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(LocalHttpServer)

public:
    explicit LocalHttpServer(QObject *parent = nullptr);
    ~LocalHttpServer() override;

    // Listens on a free port of 127.0.0.1.
    bool listen();
    // Stops listening; url() keeps naming the old port, so a client is then
    // refused.
    void stopListening();

    quint16 port() const;
    QUrl url(const QString &path = QStringLiteral("/ip_query.php")) const;

    void setReply(int status, const QByteArray &body,
                  const QByteArray &contentType = QByteArrayLiteral("text/xml; charset=utf-8"));
    void setNeverAnswer(bool neverAnswer);

    int requestCount() const;
    // "GET /ip_query.php HTTP/1.1" and the like, in arrival order.
    QStringList requestLines() const;

private:
    void acceptConnections();
    void readRequest(QTcpSocket *socket);

    QTcpServer server;
    quint16 listeningPort = 0;
    int status = 200;
    QByteArray body;
    QByteArray contentType;
    bool silent = false;
    QStringList lines;
};
