#pragma once

#include <QLabel>

/// The eye of a list row: shows the picture that its row gives it and reports presses.
class BlindButton final : public QLabel {
    Q_OBJECT

public:
    explicit BlindButton(QWidget* parent = nullptr);

signals:
    void blindPressed();

protected:
    bool event(QEvent* event) override;
    /// Any button counts, and the press ends here: it does not select the row.
    void mousePressEvent(QMouseEvent* event) override;
};
