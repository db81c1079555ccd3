#pragma once

#include "app/Link.h"
#include "app/shell/EchoTimes.h"

#include <QObject>
#include <QTimer>

/// Watches the connection to one Producer: its echoes, and its answers to discovery.
class LinkMonitor final : public QObject {
    Q_OBJECT

public:
    explicit LinkMonitor(QObject* parent);

    /// The sender of changes reports to it.
    [[nodiscard]] EchoTimes& echoTimes() { return echoTimes_; }
    [[nodiscard]] const Link& link() const { return link_; }

    /// A new connection: forgets what the previous one has shown.
    void onConnected(const QString& address);
    void onLost();

signals:
    /// link() has changed. Echoes are taken into account a few times a second.
    void changed();

private:
    void setListed(const QString& address, bool listed);
    void update();

    EchoTimes echoTimes_{this};
    QTimer updateTimer_{this};
    bool connected_ = false;
    bool listed_ = false;    // by discovery
    bool wasListed_ = false; // during this connection
    QString address_;
    Link link_;
};
