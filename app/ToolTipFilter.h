#pragma once

#include <QObject>

/// Installed on the application, shows the tool tips of all widgets in the application's look.
///
/// Left to itself, a tool tip takes over the style sheet of the widget that it explains, with
/// background pictures and all.
class ToolTipFilter : public QObject {
    Q_OBJECT

public:
    explicit ToolTipFilter(QObject* parent) : QObject(parent) {}

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};
