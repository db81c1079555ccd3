#pragma once

#include "warp/Item.h"

#include <QList>

class ScreenPartItem;

/// The row of a screen; holds the rows of its parts, which replace it in the list in mode `Parts`.
/// Members marked API are not used by the application itself.
class ScreenItem final : public Item {
    Q_OBJECT

public:
    ScreenItem(int screenId, int dataIndex, int sourceWidth, int sourceHeight, bool blinded,
               const QString& name, const Configuration& configuration, QWidget* parent);

    NetworkCompanion::ItemKey key() const override {
        return NetworkCompanion::ItemKey::screen(static_cast<unsigned int>(id()));
    }
    NetworkCompanion::LV_NTC_ModeType mode() const { return mode_; }
    void setMode(NetworkCompanion::LV_NTC_ModeType mode) { mode_ = mode; }
    /// Whether the list shows the parts instead of the screen.
    bool isHandledThroughParts() const { return mode_ == NetworkCompanion::LV_NTC_ModeType::Parts; }

    /// In order of addition; not owned.
    const QList<ScreenPartItem*>& parts() const { return parts_; }
    void addPart(ScreenPartItem* part);
    bool hasPart(int partId) const; // API
    /// The first part with that id, or null.
    ScreenPartItem* getPart(int partId) const;
    /// Removes the first part with that id and returns it undeleted; null when there is none.
    ScreenPartItem* removePart(int partId);

    void hideParts(); // API
    void showParts();

public slots:
    void onBlind() override;

private:
    NetworkCompanion::LV_NTC_ModeType mode_ = NetworkCompanion::LV_NTC_ModeType::Unset;
    QList<ScreenPartItem*> parts_;
};
