#pragma once

#include <QLineEdit>

class QToolButton;

/// A line edit that accepts every key press, so that typing never triggers a shortcut. Esc or a
/// button of touch size clears it.
class SearchBox final : public QLineEdit {
    Q_OBJECT

public:
    explicit SearchBox(QWidget* parent);

signals:
    /// The operator pressed Enter or Down, or Esc in an empty box: the focus should move on.
    void focusReleased();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QToolButton* clearButton_; // child of the box
};
