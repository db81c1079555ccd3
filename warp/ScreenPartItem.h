#pragma once

#include "warp/Item.h"

class ScreenItem;

/// The row of one part of a screen.
class ScreenPartItem final : public Item {
    Q_OBJECT

public:
    ScreenPartItem(int partId, int dataIndex, int sourceWidth, int sourceHeight, bool blinded,
                   const QString& name, const Configuration& configuration, QWidget* parent);

    NetworkCompanion::ItemKey key() const override;
    /// The screen that the part belongs to; null before ScreenItem::addPart().
    ScreenItem* screenItem() const { return screenItem_; }
    void setScreenItem(ScreenItem* screen) { screenItem_ = screen; }

public slots:
    void onBlind() override;

private:
    ScreenItem* screenItem_ = nullptr;
};
