#pragma once

#include "warp/Item.h"

/// The row of a media of a cue. Starts as not blinded, whatever the Producer's state.
class MediaItem final : public Item {
    Q_OBJECT

public:
    /// `flag` is kept as it came.
    MediaItem(NetworkCompanion::MediaType::Enum mediaType, unsigned int cueId, int mediaId,
              int dataIndex, int sourceWidth, int sourceHeight, bool flag, const QString& name,
              const Configuration& configuration, QWidget* parent);

    NetworkCompanion::MediaType::Enum mediaType() const { return mediaType_; }
    unsigned int cueId() const { return static_cast<unsigned int>(id()); }
    int mediaId() const { return mediaId_; }
    bool flag() const { return flag_; }

public slots:
    void onBlind() override;

private:
    NetworkCompanion::MediaType::Enum mediaType_;
    int mediaId_;
    bool flag_;
};
