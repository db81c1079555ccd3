#include "tools/demo_producer/ShowCatalog.h"

#include <QRandomGenerator>

#include <cmath>
#include <numbers>

using namespace NetworkCompanion;

namespace {

using Kind = Warp::Kind;

constexpr QSize kFullHd{1920, 1080};

/// Moves every point of a straight mesh by offset(x, y). Coordinates and offsets are in units of
/// half the item's size, so that the item reaches from -1 to 1.
template <typename Function>
Warp warpWithOffsets(Kind kind, int rows, int columns, QSize size, Function offset) {
    Warp warp = Warp::straight(kind, rows, columns, size);
    for (ControlPoint& point : warp.xy) {
        const double x = point.position.x() / (size.width() / 2.0);
        const double y = point.position.y() / (size.height() / 2.0);
        const QPointF by = offset(x, y);
        // Whole pixels, as edits by key have them.
        point.position = {std::round((x + by.x()) * size.width() / 2.0),
                          std::round((y + by.y()) * size.height() / 2.0)};
    }
    return warp;
}

/// Four corners, each moved by its own offset in units of half the size.
Warp keystone(QSize size, const std::array<QPointF, 4>& offsets) {
    return warpWithOffsets(
        Kind::Keystone, 2, 2, size,
        [&offsets](double x, double y) { return offsets[(y > 0 ? 2u : 0u) + (x > 0 ? 1u : 0u)]; });
}

/// For a round column or a bay: `depth` curves top and bottom edge, `taper` narrows the bottom.
Warp column(Kind kind, int rows, int columns, QSize size, double depth, double taper) {
    return warpWithOffsets(
        kind, rows, columns, size,
        [depth, taper](double x, double y) {
            return QPointF(-taper * x * (1.0 + y) / 2.0 - 0.06 * x,
                           depth * (1.0 - x * x) * y - 0.08 * y);
        });
}

/// Sine waves of `amount` in both directions, and a margin of `inset` on all sides.
Warp waves(Kind kind, int rows, int columns, QSize size, double amount, double inset) {
    return warpWithOffsets(
        kind, rows, columns, size,
        [amount, inset](double x, double y) {
            return QPointF(amount * 0.5 * std::sin(y * std::numbers::pi) - inset * x,
                           amount * std::sin(x * std::numbers::pi) - inset * y);
        });
}

/// Adds items to a show and numbers their data indexes.
class Builder {
public:
    explicit Builder(const QString& title) { show_.title = title; }

    void screen(quint32 id, const QString& name, const Warp& warp,
                LV_NTC_ModeType mode = LV_NTC_ModeType::Unset,
                const std::vector<Layer>& layers = {}) {
        ShowItem item = make(ItemKey::screen(id), name, kFullHd, warp);
        item.mode = mode;
        item.layers = layers;
        add(std::move(item));
    }
    void part(quint32 screenId, quint32 partId, const QString& name, const Warp& warp, QSize size,
              const QRectF& area) {
        ShowItem item = make(ItemKey::screenPart(screenId, partId), name, size, warp);
        item.area = area;
        add(std::move(item));
    }
    void media(quint32 cueId, quint32 mediaId, MediaType::Enum type, const QString& name,
               QSize size, const QString& picture, const Warp& warp) {
        ShowItem item = make(ItemKey::media(cueId, mediaId), name, size, warp);
        item.mediaType = type;
        item.picture = picture;
        add(std::move(item));
    }
    void texture(quint32 cueId, quint32 textureId, const QString& name, QSize size,
                 const QString& picture, const Warp& warp) {
        ShowItem item = make(ItemKey::texture(cueId, textureId), name, size, warp);
        item.picture = picture;
        add(std::move(item));
    }
    void quickKey(const QString& name, const QString& color) {
        show_.quickKeys[quint32(show_.quickKeys.size()) + 1] = {name, color};
    }

    Show take() { return std::move(show_); }

private:
    ShowItem make(const ItemKey& key, const QString& name, QSize size, const Warp& warp) {
        ShowItem item;
        item.key = key;
        item.dataIndex = ++lastDataIndex_;
        item.name = name;
        item.size = size;
        item.warp = warp;
        return item;
    }
    void add(ShowItem item) {
        const QString name = item.name;
        if (const auto fault = show_.add(std::move(item)))
            qCritical("Show catalog: \"%s\" refused: %s", qUtf8Printable(name),
                      qUtf8Printable(*fault));
    }

    Show show_;
    quint32 lastDataIndex_ = 0;
};

Layer mediaLayer(quint32 cueId, quint32 mediaId, const QRectF& area) {
    return {ItemKey::media(cueId, mediaId), area};
}

Layer textureLayer(quint32 cueId, quint32 textureId, const QRectF& area) {
    return {ItemKey::texture(cueId, textureId), area};
}

constexpr QRectF kWhole{0, 0, 1, 1};

Warp randomWarp(QSize size, QRandomGenerator& random) {
    const auto amount = [&random](double most) { return (random.generateDouble() - 0.5) * most; };
    switch (random.bounded(4)) {
    case 0:
        return Warp::straight(Kind::None, 2, 2, size);
    case 1: {
        std::array<QPointF, 4> offsets;
        for (QPointF& offset : offsets)
            offset = {amount(0.4), amount(0.4)};
        return keystone(size, offsets);
    }
    case 2:
        return waves(Kind::Bezier, 4, 4, size, amount(0.4), 0.1);
    default:
        return column(Kind::Curve, 3, 4, size, amount(0.5), amount(0.4));
    }
}

} // namespace

Show ShowCatalog::harbour() {
    Builder builder(QStringLiteral("Harbour Night"));
    builder.screen(0, QStringLiteral("Warehouse front"),
                   waves(Kind::Bezier, 7, 7, kFullHd, 0.11, 0.11), LV_NTC_ModeType::Deformation,
                   {mediaLayer(11, 1, kWhole), mediaLayer(14, 4, {0.62, 0.1, 0.3, 0.5}),
                    textureLayer(22, 2, {0.06, 0.56, 0.4, 0.36})});
    builder.screen(1, QStringLiteral("Side wall"),
                   keystone(kFullHd, {{{0.06, 0.07}, {-0.12, 0.3}, {0.02, -0.06}, {-0.05, -0.22}}}),
                   LV_NTC_ModeType::Deformation,
                   {mediaLayer(12, 2, kWhole), mediaLayer(13, 3, {0.06, 0.1, 0.36, 0.42})});
    builder.screen(2, QStringLiteral("Silos"), Warp::straight(Kind::None, 2, 2, kFullHd),
                   LV_NTC_ModeType::Parts,
                   {textureLayer(21, 1, kWhole), mediaLayer(11, 1, {0, 0.34, 1, 0.32}),
                    textureLayer(22, 2, {0.36, 0.06, 0.28, 0.26})});
    constexpr QSize kSilo{640, 1080};
    builder.part(2, 0, QStringLiteral("Left silo"), column(Kind::Curve, 3, 5, kSilo, 0.07, 0.12),
                 kSilo, {0, 0, 1.0 / 3, 1});
    builder.part(2, 1, QStringLiteral("Middle silo"),
                 column(Kind::Bezier, 4, 4, kSilo, -0.09, -0.05), kSilo, {1.0 / 3, 0, 1.0 / 3, 1});
    builder.part(2, 2, QStringLiteral("Gable"),
                 keystone(kSilo, {{{0.24, 0.22}, {-0.2, 0.1}, {0.05, -0.06}, {-0.06, -0.1}}}),
                 kSilo, {2.0 / 3, 0, 1.0 / 3, 1});

    constexpr QSize kSkyline{1600, 1200};
    constexpr QSize kCamera{1280, 720};
    constexpr QSize kGrid{1024, 1024};
    builder.media(11, 1, MediaType::Video, QStringLiteral("Tide"), kFullHd, QStringLiteral("waves"),
                  Warp::straight(Kind::None, 2, 2, kFullHd));
    builder.media(12, 2, MediaType::Image, QStringLiteral("Skyline"), kSkyline,
                  QStringLiteral("skyline"), waves(Kind::Curve, 4, 4, kSkyline, -0.05, -0.05));
    builder.media(13, 3, MediaType::LiveInput, QStringLiteral("Crane camera"), kCamera,
                  QStringLiteral("camera"),
                  keystone(kCamera, {{{0.1, 0.05}, {-0.05, 0.12}, {0.03, -0.1}, {-0.12, -0.04}}}));
    builder.media(14, 4, MediaType::Generated, QStringLiteral("Radar"), kGrid,
                  QStringLiteral("radar"), column(Kind::Bezier, 4, 4, kGrid, 0.12, 0.1));
    constexpr QSize kBricks{512, 512};
    constexpr QSize kEmblem{1024, 512};
    Warp bricks = Warp::straight(Kind::Keystone, 2, 2, kBricks);
    for (ControlPoint& point : bricks.uv) // shows the middle of the picture only
        point.position = {0.25 + 0.5 * point.position.x(), 0.25 + 0.5 * point.position.y()};
    builder.texture(21, 1, QStringLiteral("Brick"), kBricks, QStringLiteral("bricks"), bricks);
    builder.texture(22, 2, QStringLiteral("Anchor"), kEmblem, QStringLiteral("emblem"),
                    keystone(kEmblem, {{{0.12, 0.1}, {-0.12, 0.1}, {0, -0.1}, {0, -0.1}}}));

    builder.quickKey(QStringLiteral("Go"), QStringLiteral("#2e7d32"));
    builder.quickKey(QStringLiteral("Hold"), QStringLiteral("#a36a00"));
    builder.quickKey(QStringLiteral("House lights"), QStringLiteral("#5d4a8c"));
    builder.quickKey(QStringLiteral("Foghorn"), QStringLiteral("#37566b"));
    builder.quickKey(QStringLiteral("Tide up"), QStringLiteral("#00707c"));
    builder.quickKey(QStringLiteral("Lightning"), QStringLiteral("#1f5fbf"));
    builder.quickKey(QStringLiteral("Финал"), QStringLiteral("#b3364b"));
    builder.quickKey(QStringLiteral("Black out"), QStringLiteral("#404040"));
    return builder.take();
}

Show ShowCatalog::winterGarden() {
    Builder builder(QStringLiteral("Winter Garden"));
    builder.screen(0, QStringLiteral("Palm house"), column(Kind::Curve, 4, 5, kFullHd, 0.07, 0.1),
                   LV_NTC_ModeType::Deformation,
                   {mediaLayer(31, 5, kWhole), textureLayer(22, 3, {0.3, 0.1, 0.4, 0.4})});
    builder.screen(3, QStringLiteral("Pond"), Warp::straight(Kind::None, 2, 2, kFullHd),
                   LV_NTC_ModeType::Simple, {mediaLayer(11, 6, kWhole)});
    builder.screen(5, QStringLiteral("Glass doors"), Warp::straight(Kind::None, 2, 2, kFullHd),
                   LV_NTC_ModeType::Parts, {mediaLayer(31, 5, kWhole)});
    constexpr QSize kDoor{960, 1080};
    builder.part(5, 4, QStringLiteral("West door"),
                 keystone(kDoor, {{{0.1, 0.1}, {-0.1, 0.2}, {0.1, -0.1}, {-0.1, -0.2}}}), kDoor,
                 {0, 0, 0.5, 1});
    builder.part(5, 7, QString(), waves(Kind::Bezier, 4, 7, kDoor, 0.06, 0.1), kDoor,
                 {0.5, 0, 0.5, 1});
    builder.media(31, 5, MediaType::Generated, QStringLiteral("Aurora"), kFullHd,
                  QStringLiteral("aurora"), Warp::straight(Kind::None, 2, 2, kFullHd));
    builder.media(11, 6, MediaType::Video, QStringLiteral("Ripples"), {1280, 720},
                  QStringLiteral("waves"), column(Kind::Curve, 3, 3, {1280, 720}, 0.24, -0.2));
    builder.texture(22, 3, QStringLiteral("Emblem"), {512, 512}, QStringLiteral("emblem"),
                    Warp::straight(Kind::Keystone, 2, 2, {512, 512}));
    builder.quickKey(QStringLiteral("Snow"), QStringLiteral("#4a6f8a"));
    builder.quickKey(QStringLiteral("Warm light"), QStringLiteral("#9a5b1e"));
    return builder.take();
}

Show ShowCatalog::large(int itemCount, quint32 seed) {
    Builder builder(QStringLiteral("%1 items").arg(itemCount));
    QRandomGenerator random(seed);
    constexpr std::array<const char*, 6> kPictures{"waves", "skyline", "camera",
                                                   "radar", "aurora",  "bricks"};
    quint32 screenId = 0;
    quint32 partId = 0;
    for (int i = 0; i < itemCount; ++i) {
        const auto number = quint32(i);
        const QString suffix = QStringLiteral(" %1").arg(i, 4, 10, QChar(u'0'));
        const QString picture = QString::fromLatin1(kPictures[number % kPictures.size()]);
        const QSize size = i % 3 ? kFullHd : QSize(1024, 768);
        switch (i % 10) {
        case 0:
            screenId = number / 10;
            partId = 0;
            builder.screen(screenId, QStringLiteral("Screen") + suffix, randomWarp(kFullHd, random),
                           screenId % 3 == 2 ? LV_NTC_ModeType::Parts : LV_NTC_ModeType::Unset,
                           {mediaLayer(number + 4, 1, kWhole)});
            break;
        case 1:
        case 2:
        case 3: {
            constexpr QSize kThird{640, 1080};
            builder.part(screenId, partId, QStringLiteral("Part") + suffix,
                         randomWarp(kThird, random), kThird, {partId / 3.0, 0, 1.0 / 3, 1});
            ++partId;
            break;
        }
        case 8:
        case 9:
            builder.texture(number, 1, QStringLiteral("Texture") + suffix, size, picture,
                            randomWarp(size, random));
            break;
        default:
            builder.media(number, 1, MediaType::Enum(1 + i % 4), QStringLiteral("Media") + suffix,
                          size, picture, randomWarp(size, random));
        }
    }
    for (int key = 1; key <= 14; ++key)
        builder.quickKey(QStringLiteral("Cue %1").arg(key),
                         key % 2 ? QStringLiteral("#37566b") : QStringLiteral("#5d4a8c"));
    return builder.take();
}

bool ShowCatalog::setFirstGrid(Show& show, int rows, int columns) {
    for (const ShowItem& item : show.items()) {
        if (item.key.type != LV_NTC_ElementType::Screen || rows < 2 || columns < 2)
            continue;
        const Kind kind = rows % 3 == 1 && columns % 3 == 1 ? Kind::Bezier : Kind::Curve;
        return show.setDeformation(item.key, kind, quint32(rows), quint32(columns), false);
    }
    return false;
}
