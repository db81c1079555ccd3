#pragma once

#include "network/events/DeformationModeEvent.h"
#include "network/events/MediaDeformationModeEvent.h"
#include "network/events/MediaMovePointEvent.h"
#include "network/events/ScreenMovePointEvent.h"
#include "network/events/ScreenPartDeformationModeEvent.h"
#include "network/events/ScreenPartMovePointEvent.h"
#include "network/events/TextureMovePointEvent.h"

#include <vector>

namespace NetworkCompanion {

/// The whole deformation of one item; without points, the request for it.
class ItemDataEvent final : public Event {
    static constexpr auto fields() {
        return std::tuple{
            Field{"callerId", &ItemDataEvent::callerId_}, Field{"second", &ItemDataEvent::second_},
            Field{"deformationMode", &ItemDataEvent::deformationMode_},
            Field{"screenPartDeformationMode", &ItemDataEvent::screenPartDeformationMode_},
            Field{"mediaDeformationMode", &ItemDataEvent::mediaDeformationMode_}};
    }
    /// The lists behind the fields, each preceded by its count.
    static constexpr auto lists() {
        return std::tuple{Field{"screenPoints", &ItemDataEvent::screenPoints_},
                          Field{"screenPartPoints", &ItemDataEvent::screenPartPoints_},
                          Field{"texturePoints", &ItemDataEvent::texturePoints_},
                          Field{"mediaPoints", &ItemDataEvent::mediaPoints_}};
    }
    template <typename Visitor>
    static void forEachList(Visitor visit) {
        std::apply([&](const auto&... list) { (visit(list.member), ...); }, lists());
    }

public:
    static constexpr LV_NTC_EventType kType = LV_NTC_EventType::ItemData;

    ItemDataEvent() : Event(kType) {}
    /// In a request the caller id is the item's dataIndex, or -1 for no item.
    explicit ItemDataEvent(int callerId) : Event(kType), callerId_(callerId) {}

    int callerId() const { return callerId_; }
    void setGetItemCallerId(int callerId) { callerId_ = callerId; } // API
    int second() const { return second_; }                          // API

    /// The two modes that do not apply to the item carry the ids 0xFFFFFFFF, which no item has.
    const DeformationModeEvent& deformationMode() const { return deformationMode_; }
    const ScreenPartDeformationModeEvent& screenPartDeformationMode() const {
        return screenPartDeformationMode_;
    }
    const MediaDeformationModeEvent& mediaDeformationMode() const { return mediaDeformationMode_; }
    void setDeformationModeEvent(const DeformationModeEvent& mode) { deformationMode_ = mode; }
    void setScreenPartDeformationModeEvent(const ScreenPartDeformationModeEvent& mode) {
        screenPartDeformationMode_ = mode;
    }
    void setMediaDeformationModeEvent(const MediaDeformationModeEvent& mode) {
        mediaDeformationMode_ = mode;
    }

    const std::vector<ScreenMovePointEvent>& screenPoints() const { return screenPoints_; }
    const std::vector<ScreenPartMovePointEvent>& screenPartPoints() const {
        return screenPartPoints_;
    }
    const std::vector<TextureMovePointEvent>& texturePoints() const { return texturePoints_; }
    const std::vector<MediaMovePointEvent>& mediaPoints() const { return mediaPoints_; }
    void addScreenMovePointEvent(const ScreenMovePointEvent& point) {
        screenPoints_.push_back(point);
    }
    void addScreenPartMovePointEvent(const ScreenPartMovePointEvent& point) {
        screenPartPoints_.push_back(point);
    }
    void addTextureMovePointEvent(const TextureMovePointEvent& point) {
        texturePoints_.push_back(point);
    }
    void addMediaMovePointEvent(const MediaMovePointEvent& point) { mediaPoints_.push_back(point); }

    QByteArray serialize() const override;
    void deserialize(QByteArray& data) override { static_cast<void>(readPayload(data)); }
    /// Excludes the four point counts: the protocol announces 32 bytes less than it sends.
    int getSize() const override;

    /// The size without counts and points: the smallest payload that is accepted.
    static constexpr int wireSize() { return FieldList::wireSize(fields()); }

    qsizetype encodedSize() const override;
    char* writePayload(char* out) const override;
    /// Missing counts at the end are read as 0. A count that exceeds the remaining bytes is logged
    /// and makes the payload invalid.
    bool readPayload(QByteArrayView payload) override;

protected:
    bool hasSameFields(const Event& other) const override;
    void print(QDebug& debug) const override;

private:
    std::int32_t callerId_ = 0;
    std::int32_t second_ = 0;
    DeformationModeEvent deformationMode_;
    ScreenPartDeformationModeEvent screenPartDeformationMode_;
    MediaDeformationModeEvent mediaDeformationMode_;
    std::vector<ScreenMovePointEvent> screenPoints_;
    std::vector<ScreenPartMovePointEvent> screenPartPoints_;
    std::vector<TextureMovePointEvent> texturePoints_;
    std::vector<MediaMovePointEvent> mediaPoints_;
};

} // namespace NetworkCompanion
