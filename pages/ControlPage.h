#pragma once

#include "app/shell/IPage.h"

/// What the pages of widgets share: shown, they take the focus, so that the first Tab leads to the
/// first control. Keys that no control takes go on to the window, as on every page.
class ControlPage : public IPage {
    Q_OBJECT

public:
    explicit ControlPage(QWidget* parent);

protected:
    void showEvent(QShowEvent* event) override;
};
