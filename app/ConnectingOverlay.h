#pragma once

#include "app/Veil.h"

/// The veil while a connection is being made: says to which address; its button and Escape cancel.
class ConnectingOverlay final : public Veil {
    Q_OBJECT

public:
    ConnectingOverlay(const Configuration& configuration, const QString& address, QWidget* parent);

signals:
    void cancelled();

protected:
    void onButton() override { emit cancelled(); }
    void keyPressEvent(QKeyEvent* event) override;
};
