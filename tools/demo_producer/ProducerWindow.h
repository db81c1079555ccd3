#pragma once

#include "tools/demo_producer/ShowPainter.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

/// The Producer's window. Keys: N a new show, P the next test pattern, B blinds all screens or
/// none, M shows the meshes, F11 the whole display, Q ends.
class ProducerWindow : public QWidget {
    Q_OBJECT

public:
    /// The session outlives the window. A still window shows moving pictures at one fixed moment,
    /// and is repainted only when something changed.
    ProducerWindow(ProducerSession& session, const QString& name, const QString& address,
                   bool still, bool meshes);

    /// Appends to the lines of what happened; the session's own appear by themselves.
    void showLine(const QString& line);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void onQuickKeyExecuted(quint32 id, const QString& name, const QString& color);
    void repaintSoon();

    ProducerSession& session_;
    Stage stage_;
    ShowPainter painter_;
    const bool still_;
    QElapsedTimer running_;
    QElapsedTimer sinceFlash_;
    QTimer animation_;
    QTimer repaint_;
    qint64 lastPaintMs_ = 0;
};
