#pragma once

#include "app/shell/IPage.h"

/// A page of widgets: takes the focus when it is shown, so that the first Tab leads to the first
/// control. Keys that no control handles reach the window.
class ControlPage : public IPage {
    Q_OBJECT

public:
    explicit ControlPage(QWidget* parent);

protected:
    void showEvent(QShowEvent* event) override;
};
