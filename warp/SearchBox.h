#pragma once

#include <QLineEdit>

/// A line edit that keeps its keys to itself: those it has no use for are no shortcuts either while
/// somebody types.
class SearchBox final : public QLineEdit {
    Q_OBJECT

public:
    using QLineEdit::QLineEdit;

protected:
    void keyPressEvent(QKeyEvent* event) override;
};
