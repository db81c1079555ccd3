#pragma once

#include <QSpinBox>

/// The number of a page, with arrows to turn it. Has the keyboard only while somebody types into
/// the number: who touches an arrow leaves it where it is, at whatever acts on single keys.
class PageSpinBox final : public QSpinBox {
    Q_OBJECT

public:
    explicit PageSpinBox(QWidget* parent);

    /// Leaves the number unmarked unless it is being typed.
    void stepBy(int steps) override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    /// Gives the keyboard to the parent.
    void endTyping();
};
