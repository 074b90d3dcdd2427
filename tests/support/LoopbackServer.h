// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QHash>
#include <QHostAddress>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUrl>

#include <utility>

namespace kse {

/// A web server on the loopback that answers GET requests, one a connection, in the thread that
/// made it: the test must run its event loop.
class LoopbackServer : public QObject
{
public:
    struct Answer
    {
        QByteArray body = {};
        QByteArray status = "200 OK";
        QByteArray headers = {}; ///< Whole lines, each with its end.
        bool isHeld = false;     ///< Until `releaseHeld`.
    };

    LoopbackServer()
    {
        connect(&m_sockets, &QTcpServer::pendingConnectionAvailable, this, [this] {
            while (QTcpSocket* socket = m_sockets.nextPendingConnection()) {
                connect(socket, &QTcpSocket::readyRead, this, [this, socket] { serve(socket); });
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
                serve(socket); // what came before the connection was taken
            }
        });
        m_sockets.listen(QHostAddress::LocalHost);
    }

    QUrl url(const QString& path = {}) const
    {
        return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(m_sockets.serverPort()).arg(path));
    }

    void releaseHeld()
    {
        for (const auto& [socket, answer] : std::exchange(m_held, {})) {
            if (socket) {
                send(socket, answer);
            }
        }
    }

    /// From here on nobody is there.
    void close() { m_sockets.close(); }

    QHash<QByteArray, Answer> answers; ///< By path; any other path is not found.
    QList<QByteArray> requests;        ///< The whole heads, in the order they came.

private:
    void serve(QTcpSocket* socket)
    {
        const QByteArray head = socket->peek(qint64(64) * 1024);
        if (!head.contains("\r\n\r\n")) {
            return;
        }
        socket->readAll();
        requests.append(head);
        const Answer answer = answers.value(head.split(' ').value(1), {{}, "404 Not Found"});
        if (answer.isHeld) {
            m_held.append({socket, answer});
        } else {
            send(socket, answer);
        }
    }

    static void send(QTcpSocket* socket, const Answer& answer)
    {
        socket->write("HTTP/1.1 " + answer.status +
                      "\r\nContent-Length: " + QByteArray::number(answer.body.size()) +
                      "\r\nConnection: close\r\n" + answer.headers + "\r\n" + answer.body);
        socket->disconnectFromHost();
    }

    QTcpServer m_sockets;
    QList<std::pair<QPointer<QTcpSocket>, Answer>> m_held;
};

} // namespace kse
