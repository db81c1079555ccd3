#pragma once

#include <QVBoxLayout>
#include <QWidget>

struct Configuration;
class QPushButton;

/// The veil over the whole window while the connection is lost: says so, keeps mouse and keyboard
/// from the page beneath, and offers to give the Producer up.
class DisconnectOverlay final : public QWidget {
    Q_OBJECT

public:
    /// As large as `parent`, the main window, which keeps it so.
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
