#pragma once

#include <QObject>

/// Event filter of the application: shows all tool tips in the application's style.
///
/// By default a tool tip takes the style sheet of its widget, background picture included.
class ToolTipFilter : public QObject {
    Q_OBJECT

public:
    explicit ToolTipFilter(QObject* parent) : QObject(parent) {}

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};
