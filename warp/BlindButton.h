#pragma once

#include <QLabel>

/// The eye of a list row: shows the picture that its row sets and reports presses.
class BlindButton final : public QLabel {
    Q_OBJECT

public:
    explicit BlindButton(QWidget* parent = nullptr);

signals:
    void blindPressed();

protected:
    bool event(QEvent* event) override;
    /// Accepts a press of any mouse button, so that it does not reach and select the row.
    void mousePressEvent(QMouseEvent* event) override;
};
