#pragma once

#include "app/LinkBadge.h"
#include "app/Veil.h"

/// The veil over a lost connection: says that Meshpad keeps trying; its button disconnects from the
/// Producer.
class DisconnectOverlay final : public Veil {
    Q_OBJECT

public:
    DisconnectOverlay(const Configuration& configuration, QWidget* parent);
    ~DisconnectOverlay() override;

    void setLink(const Link& link) { badge_->setLink(link); }

public slots:
    void onDisconnect() { emit disconnection(); }

signals:
    /// The operator asked to disconnect.
    void disconnection();

protected:
    void onButton() override { onDisconnect(); }

private:
    void initOverlay();

    LinkBadge* badge_ = nullptr; // child of the overlay
};
