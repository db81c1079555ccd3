#pragma once

#include "warp/Item.h"

/// The row of a cue's texture. Starts as not blinded; only blind events set the state.
/// Members marked API are not used by the application itself.
class TextureItem final : public Item {
    Q_OBJECT

public:
    /// `flag` is stored unchanged.
    TextureItem(unsigned int cueId, int textureId, int dataIndex, int sourceWidth, int sourceHeight,
                bool flag, const QString& name, const Configuration& configuration,
                QWidget* parent);

    NetworkCompanion::ItemKey key() const override {
        return NetworkCompanion::ItemKey::texture(cueId(), static_cast<unsigned int>(textureId_));
    }
    unsigned int cueId() const { return static_cast<unsigned int>(id()); }
    int textureId() const { return textureId_; }
    bool flag() const { return flag_; } // API

public slots:
    void onBlind() override;

private:
    int textureId_;
    bool flag_;
};
