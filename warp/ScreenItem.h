#pragma once

#include "warp/Item.h"

#include <QList>

class ScreenPartItem;

/// The row of a screen; knows the rows of its parts, which can stand in the list in its place.
class ScreenItem final : public Item {
    Q_OBJECT

public:
    ScreenItem(int screenId, int dataIndex, int sourceWidth, int sourceHeight, bool blinded,
               const QString& name, const Configuration& configuration, QWidget* parent);

    NetworkCompanion::LV_NTC_ModeType mode() const { return mode_; }
    void setMode(NetworkCompanion::LV_NTC_ModeType mode) { mode_ = mode; }
    /// Whether its parts stand for it in the list.
    bool isHandledThroughParts() const { return mode_ == NetworkCompanion::LV_NTC_ModeType::Parts; }

    /// In the order of their addition; not owned.
    const QList<ScreenPartItem*>& parts() const { return parts_; }
    void addPart(ScreenPartItem* part);
    bool hasPart(int partId) const;
    /// The part that was first added with this number, or null.
    ScreenPartItem* getPart(int partId) const;
    /// Forgets that part and returns it undeleted; null when there is none.
    ScreenPartItem* removePart(int partId);

    void hideParts();
    void showParts();

public slots:
    void onBlind() override;

private:
    NetworkCompanion::LV_NTC_ModeType mode_ = NetworkCompanion::LV_NTC_ModeType::Unset;
    QList<ScreenPartItem*> parts_;
};
