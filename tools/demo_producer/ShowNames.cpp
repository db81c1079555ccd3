#include "tools/demo_producer/ShowNames.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <utility>

using namespace NetworkCompanion;

namespace {

template <typename Value, std::size_t Size>
using Names = std::array<std::pair<Value, const char*>, Size>;

constexpr Names<LV_NTC_ElementType, 4> kElementTypes{{{LV_NTC_ElementType::Media, "media"},
                                                      {LV_NTC_ElementType::Texture, "texture"},
                                                      {LV_NTC_ElementType::Screen, "screen"},
                                                      {LV_NTC_ElementType::ScreenPart, "part"}}};

constexpr Names<LV_NTC_DeformationType, 4> kDeformations{
    {{LV_NTC_DeformationType::None, "none"},
     {LV_NTC_DeformationType::Keystone, "keystone"},
     {LV_NTC_DeformationType::Bezier, "bezier"},
     {LV_NTC_DeformationType::Curve, "curve"}}};

constexpr Names<LV_NTC_ModeType, 3> kModes{{{LV_NTC_ModeType::Simple, "simple"},
                                            {LV_NTC_ModeType::Deformation, "deformation"},
                                            {LV_NTC_ModeType::Parts, "parts"}}};

constexpr Names<MediaType::Enum, 5> kMediaTypes{{{MediaType::Unknown, "unknown"},
                                                 {MediaType::Image, "image"},
                                                 {MediaType::Video, "video"},
                                                 {MediaType::LiveInput, "live"},
                                                 {MediaType::Generated, "generated"}}};

constexpr Names<LV_NTC_PictureType, 12> kPatterns{
    {{LV_NTC_PictureType::None, "none"},
     {LV_NTC_PictureType::Small, "small"},
     {LV_NTC_PictureType::Horizontal, "horizontal"},
     {LV_NTC_PictureType::Vertical, "vertical"},
     {LV_NTC_PictureType::Tile, "tile"},
     {LV_NTC_PictureType::Logo, "logo"},
     {LV_NTC_PictureType::SmpteHorizontal, "smpte-horizontal"},
     {LV_NTC_PictureType::SmpteVertical, "smpte-vertical"},
     {LV_NTC_PictureType::Osd, "osd"},
     {LV_NTC_PictureType::FramerateCpu, "framerate-cpu"},
     {LV_NTC_PictureType::FramerateGpu, "framerate-gpu"},
     {LV_NTC_PictureType::White, "white"}}};

template <typename Table, typename Value>
QString nameIn(const Table& table, Value value) {
    const auto found = std::ranges::find(table, value, &Table::value_type::first);
    return found == table.end() ? QString::number(int(value)) : QString::fromLatin1(found->second);
}

template <typename Value, std::size_t Size>
std::optional<Value> valueIn(const Names<Value, Size>& table, const QString& name) {
    for (const auto& [value, text] : table)
        if (name == QLatin1String(text))
            return value;
    return {};
}

} // namespace

QString nameOf(LV_NTC_ElementType type) {
    return nameIn(kElementTypes, type);
}
QString nameOf(LV_NTC_DeformationType kind) {
    return nameIn(kDeformations, kind);
}
QString nameOf(LV_NTC_ModeType mode) {
    return nameIn(kModes, mode);
}
QString nameOf(MediaType::Enum type) {
    return nameIn(kMediaTypes, type);
}
QString nameOf(LV_NTC_PictureType picture) {
    return nameIn(kPatterns, picture);
}

QString nameOf(const ItemKey& key) {
    const QString name = nameOf(key.type) + u':' + QString::number(key.id);
    return key.type == LV_NTC_ElementType::Screen ? name : name + u'/' + QString::number(key.subId);
}

std::optional<LV_NTC_DeformationType> deformationNamed(const QString& name) {
    return valueIn(kDeformations, name);
}

std::optional<LV_NTC_ModeType> modeNamed(const QString& name) {
    return valueIn(kModes, name);
}

std::optional<MediaType::Enum> mediaTypeNamed(const QString& name) {
    return valueIn(kMediaTypes, name);
}

std::optional<LV_NTC_PictureType> patternNamed(const QString& name) {
    return valueIn(kPatterns, name);
}

std::optional<ItemKey> itemNamed(const QString& name) {
    static const QRegularExpression kForm(QStringLiteral("^([a-z]+):(\\d+)(?:/(\\d+))?$"));
    const QRegularExpressionMatch match = kForm.match(name);
    const std::optional<LV_NTC_ElementType> type = valueIn(kElementTypes, match.captured(1));
    if (!match.hasMatch() || !type || match.hasCaptured(3) == (*type == LV_NTC_ElementType::Screen))
        return {};
    bool idFits = false;
    bool subIdFits = true;
    ItemKey key{*type, match.captured(2).toUInt(&idFits), 0};
    if (match.hasCaptured(3))
        key.subId = match.captured(3).toUInt(&subIdFits);
    return idFits && subIdFits ? std::optional(key) : std::nullopt;
}
