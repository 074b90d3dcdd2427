// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QHostAddress>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QProcess>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUrl>

#include <memory>
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

    /// Speaks TLS if `sockets` does.
    explicit LoopbackServer(std::unique_ptr<QTcpServer> sockets = std::make_unique<QTcpServer>())
        : m_sockets(std::move(sockets))
    {
        connect(m_sockets.get(), &QTcpServer::pendingConnectionAvailable, this, [this] {
            while (QTcpSocket* socket = m_sockets->nextPendingConnection()) {
                connect(socket, &QTcpSocket::readyRead, this, [this, socket] { serve(socket); });
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
                serve(socket); // what came before the connection was taken
            }
        });
        m_sockets->listen(QHostAddress::LocalHost);
    }

    QUrl url(const QString& path = {}) const
    {
        QUrl url;
        url.setScheme(qobject_cast<QSslServer*>(m_sockets.get()) ? QStringLiteral("https")
                                                                 : QStringLiteral("http"));
        url.setHost(m_sockets->serverAddress().toString());
        url.setPort(m_sockets->serverPort());
        url.setPath(path);
        return url;
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
    void close() { m_sockets->close(); }

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

    std::unique_ptr<QTcpServer> m_sockets;
    QList<std::pair<QPointer<QTcpSocket>, Answer>> m_held;
};

/// Sockets that speak TLS, with a certificate of their own in `folder` that this process trusts
/// from here on. Null if there is no openssl to make it.
inline std::unique_ptr<QTcpServer> trustedTlsSockets(const QString& folder)
{
    QFile key(QDir(folder).filePath(QStringLiteral("key.pem")));
    const QString certificate = QDir(folder).filePath(QStringLiteral("certificate.pem"));
    QProcess openssl;
    openssl.start(QStringLiteral("openssl"),
                  QStringLiteral("req -x509 -newkey rsa:2048 -nodes -subj /CN=loopback "
                                 "-addext subjectAltName=IP:127.0.0.1 -keyout")
                          .split(u' ')
                      << key.fileName() << QStringLiteral("-out") << certificate);
    if (!openssl.waitForFinished() || openssl.exitCode() != 0 || !key.open(QIODevice::ReadOnly)) {
        return nullptr;
    }
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.addCaCertificates(certificate);
    QSslConfiguration::setDefaultConfiguration(tls);
    tls.setLocalCertificateChain(QSslCertificate::fromPath(certificate));
    tls.setPrivateKey(QSslKey(&key, QSsl::Rsa));
    auto sockets = std::make_unique<QSslServer>();
    sockets->setSslConfiguration(tls);
    return sockets;
}

} // namespace kse
