#pragma once

#include <QCoreApplication>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

#include <atomic>

/// A Producer on its own thread that only counts the received bytes.
class Peer {
public:
    Peer() {
        thread_.start();
        server_.moveToThread(&thread_);
        QObject::connect(
            &server_, &QTcpServer::newConnection, &server_,
            [this] {
                socket_ = server_.nextPendingConnection();
                socket_->setSocketOption(QAbstractSocket::LowDelayOption, 1);
                QObject::connect(
                    socket_, &QTcpSocket::readyRead, socket_,
                    [this] { received += socket_->readAll().size(); });
            });
        QMetaObject::invokeMethod(
            &server_, [this] { server_.listen(QHostAddress::LocalHost); },
            Qt::BlockingQueuedConnection);
    }
    ~Peer() {
        QMetaObject::invokeMethod(
            &server_,
            [this] {
                delete socket_;
                server_.close();
                server_.moveToThread(QCoreApplication::instance()->thread());
            },
            Qt::BlockingQueuedConnection);
        thread_.quit();
        thread_.wait();
    }

    quint16 port() const { return server_.serverPort(); }
    void send(const QByteArray& bytes) {
        QMetaObject::invokeMethod(
            &server_,
            [this, bytes] {
                socket_->write(bytes);
                while (socket_->bytesToWrite() > 0)
                    socket_->waitForBytesWritten(1000);
            },
            Qt::BlockingQueuedConnection);
    }

    std::atomic<qint64> received = 0;

private:
    QThread thread_;
    QTcpServer server_;
    QTcpSocket* socket_ = nullptr;
};
