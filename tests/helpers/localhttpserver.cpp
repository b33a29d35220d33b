// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "localhttpserver.h"

#include <QHostAddress>
#include <QTcpSocket>

namespace {

QByteArray reasonPhrase(int status)
{
    switch (status) {
    case 200:
        return QByteArrayLiteral("OK");
    case 404:
        return QByteArrayLiteral("Not Found");
    case 500:
        return QByteArrayLiteral("Internal Server Error");
    case 503:
        return QByteArrayLiteral("Service Unavailable");
    default:
        return QByteArrayLiteral("Status");
    }
}

const char requestBufferProperty[] = "localHttpServerRequest";

} // namespace

LocalHttpServer::LocalHttpServer(QObject *parent) : QObject(parent), contentType("text/xml; charset=utf-8")
{
    connect(&server, &QTcpServer::newConnection, this, &LocalHttpServer::acceptConnections);
}

LocalHttpServer::~LocalHttpServer()
{
    server.close();
    // Hanging clients see their connection closed only now, when the sockets
    // die with the server; they must not call back into a server half gone.
    const QList<QTcpSocket *> sockets = server.findChildren<QTcpSocket *>();
    for (QTcpSocket *socket : sockets)
        socket->disconnect(this);
}

bool LocalHttpServer::listen()
{
    if (!server.listen(QHostAddress::LocalHost, 0))
        return false;
    listeningPort = server.serverPort();
    return true;
}

void LocalHttpServer::stopListening()
{
    server.close();
}

quint16 LocalHttpServer::port() const
{
    return listeningPort;
}

QUrl LocalHttpServer::url(const QString &path) const
{
    QUrl result;
    result.setScheme(QStringLiteral("http"));
    result.setHost(QStringLiteral("127.0.0.1"));
    result.setPort(listeningPort);
    result.setPath(path);
    return result;
}

void LocalHttpServer::setReply(int replyStatus, const QByteArray &replyBody, const QByteArray &replyContentType)
{
    status = replyStatus;
    body = replyBody;
    contentType = replyContentType;
}

void LocalHttpServer::setNeverAnswer(bool neverAnswer)
{
    silent = neverAnswer;
}

int LocalHttpServer::requestCount() const
{
    return lines.size();
}

QStringList LocalHttpServer::requestLines() const
{
    return lines;
}

void LocalHttpServer::acceptConnections()
{
    while (QTcpSocket *socket = server.nextPendingConnection()) {
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { readRequest(socket); });
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    }
}

void LocalHttpServer::readRequest(QTcpSocket *socket)
{
    // Requests carry no body here: the header block ends the request.
    QByteArray request = socket->property(requestBufferProperty).toByteArray() + socket->readAll();
    const int headerEnd = request.indexOf("\r\n\r\n");
    if (headerEnd < 0) {
        socket->setProperty(requestBufferProperty, request);
        return;
    }
    socket->setProperty(requestBufferProperty, QByteArray());
    lines.append(QString::fromLatin1(request.left(request.indexOf("\r\n"))));

    // Left open and unanswered: the client waits until it gives up or the
    // server goes.
    if (silent)
        return;

    QByteArray response = "HTTP/1.1 " + QByteArray::number(status) + ' ' + reasonPhrase(status) + "\r\n";
    response += "Content-Type: " + contentType + "\r\n";
    response += "Content-Length: " + QByteArray::number(body.size()) + "\r\n";
    response += "Connection: close\r\n\r\n";
    response += body;
    socket->write(response);
    socket->disconnectFromHost();
}
