#pragma once

#include <QLineEdit>

class QToolButton;

/// A line edit that keeps its keys to itself: those it has no use for are no shortcuts either while
/// somebody types. Esc or a button that a finger hits empties it.
class SearchBox final : public QLineEdit {
    Q_OBJECT

public:
    explicit SearchBox(QWidget* parent);

signals:
    /// Enter or Down, or Esc in an empty box: the keyboard is wanted elsewhere.
    void left();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QToolButton* clearButton_; // child of the box
};
