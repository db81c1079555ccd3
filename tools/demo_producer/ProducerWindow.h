#pragma once

#include "tools/demo_producer/ShowPainter.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

/// The Producer's window. Keys: N new show, P next test pattern, B blind all screens or none,
/// M show the meshes, F11 full screen, Q quit.
class ProducerWindow : public QWidget {
    Q_OBJECT

public:
    /// The session must outlive the window. A still window shows moving pictures at one fixed
    /// moment, and repaints only after a change.
    ProducerWindow(ProducerSession& session, const QString& name, const QString& address,
                   bool still, bool meshes);

    /// Appends a line to the log panel, which also shows the session's log.
    void showLine(const QString& line);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void onQuickKeyExecuted(quint32 id, const QString& name, const QString& color);
    void scheduleRepaint();

    ProducerSession& session_;
    ViewState view_;
    ShowPainter painter_;
    const bool still_;
    QElapsedTimer running_;
    QElapsedTimer sinceFlash_;
    QTimer animation_;
    QTimer repaint_;
    qint64 lastPaintMs_ = 0;
};
