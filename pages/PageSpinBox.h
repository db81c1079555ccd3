#pragma once

#include <QSpinBox>

/// Spin box for the page number. It has the focus only while the operator types a number; a finger,
/// and a press on an arrow, leave the focus where it is, because other widgets act on single keys.
class PageSpinBox final : public QSpinBox {
    Q_OBJECT

public:
    explicit PageSpinBox(QWidget* parent);

    /// Also deselects the number unless the operator is typing.
    void stepBy(int steps) override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    /// Gives the focus to the parent.
    void endTyping();
};
