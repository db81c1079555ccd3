#pragma once

#include "pages/ControlPage.h"

#include <QVBoxLayout>

#include <vector>

struct Configuration;
class IPList;
class QPushButton;

/// The first page: lists the Producers that discovery reports and requests a connection to the one
/// that the operator selects.
class ConnectPage final : public ControlPage {
    Q_OBJECT

public:
    ConnectPage(const Configuration& configuration, QWidget* parent);
    ~ConnectPage() override;

    void lockPage() override {}
    /// Removes the buttons but keeps the addresses known: one is shown again only after discovery
    /// has dropped and rediscovered it.
    void purgeIp();

public slots:
    void onServerDiscovered(const QString& ip);
    void onServerTimeouted(const QString& ip) { removeProducer(ip); }
    void onServerDisconnected(const QString& ip) { removeProducer(ip); }
    void onSelectedIpChanged(const QString& ip);
    void onConnectToProducer();

signals:
    /// The operator asked to connect to `ip`.
    void connection(QString ip);

protected:
    /// Up and Down select an address, Enter connects to it.
    void keyPressEvent(QKeyEvent* event) override;

private:
    void initIpList();
    void initConnectButton();
    void removeProducer(const QString& ip);

    const Configuration& configuration_;
    std::vector<QString> knownIps_; // in order of discovery
    QVBoxLayout layout_;
    // Children of the page.
    IPList* ipList_ = nullptr;
    QPushButton* connectButton_ = nullptr;
};
