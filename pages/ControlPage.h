#pragma once

#include "app/IPage.h"

/// What the control pages share: the keyboard belongs to the page that is shown. A key that none of
/// its controls takes ends here, so that no letter typed on this page mutes or selects an item of
/// the list, which the operator does not see at that moment.
class ControlPage : public IPage {
    Q_OBJECT

public:
    explicit ControlPage(QWidget* parent);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;
};
