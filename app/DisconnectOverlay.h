#pragma once

#include <QVBoxLayout>
#include <QWidget>

struct Configuration;
class QPushButton;

/// Covers the whole window while the connection is lost, so that mouse and keyboard do not reach
/// the page; its button disconnects from the Producer.
class DisconnectOverlay final : public QWidget {
    Q_OBJECT

public:
    /// Takes the size of `parent`, the main window, which resizes it from then on.
    DisconnectOverlay(const Configuration& configuration, QWidget* parent);
    ~DisconnectOverlay() override;

public slots:
    void onDisconnect();

signals:
    /// The operator asked to disconnect.
    void disconnection();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void initOverlay();

    QVBoxLayout layout_;
    QPushButton* button_ = nullptr; // child of the overlay
    const Configuration& configuration_;
};
