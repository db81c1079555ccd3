#pragma once

#include "warp/Item.h"

/// The row of a cue's media. Starts as not blinded; only blind events set the state.
/// Members marked API are not used by the application itself.
class MediaItem final : public Item {
    Q_OBJECT

public:
    /// `flag` is stored unchanged.
    MediaItem(NetworkCompanion::MediaType::Enum mediaType, unsigned int cueId, int mediaId,
              int dataIndex, int sourceWidth, int sourceHeight, bool flag, const QString& name,
              const Configuration& configuration, QWidget* parent);

    NetworkCompanion::ItemKey key() const override {
        return NetworkCompanion::ItemKey::media(cueId(), static_cast<unsigned int>(mediaId_));
    }
    NetworkCompanion::MediaType::Enum mediaType() const { return mediaType_; } // API
    unsigned int cueId() const { return static_cast<unsigned int>(id()); }
    int mediaId() const { return mediaId_; }
    bool flag() const { return flag_; } // API

public slots:
    void onBlind() override;

private:
    NetworkCompanion::MediaType::Enum mediaType_;
    int mediaId_;
    bool flag_;
};
