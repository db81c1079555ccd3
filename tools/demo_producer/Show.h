#pragma once

#include "tools/demo_producer/Warp.h"

#include <QHash>
#include <QRectF>
#include <QString>

#include <compare>
#include <map>
#include <optional>

/// What identifies an item on the wire.
struct ItemKey {
    NetworkCompanion::LV_NTC_ElementType type = NetworkCompanion::LV_NTC_ElementType::None;
    quint32 id = 0;    ///< cue id or screen id
    quint32 subId = 0; ///< media, texture or part id; 0 for a screen

    friend auto operator<=>(const ItemKey&, const ItemKey&) = default;
};

size_t qHash(const ItemKey& key, size_t seed = 0);

/// A media or texture as it stands in the picture of a screen.
struct Layer {
    ItemKey item;
    QRectF area; ///< of the screen, 0 to 1

    friend bool operator==(const Layer&, const Layer&) = default;
};

/// One media, texture, screen or part of a screen, with everything that companions can change about
/// it.
struct ShowItem {
    ItemKey key;
    quint32 dataIndex = 0; ///< names the item in a request for its mesh; no two items share it
    QString name;
    QSize size;            ///< pixels
    double rotation = 0.0; ///< degrees, of the source
    bool blinded = false;
    Warp warp;

    NetworkCompanion::MediaType::Enum mediaType = NetworkCompanion::MediaType::Unknown;
    NetworkCompanion::LV_NTC_ModeType mode = NetworkCompanion::LV_NTC_ModeType::Unset;

    QString picture;           ///< of a media or texture: which of the generated pictures it plays
    std::vector<Layer> layers; ///< of a screen, the lowest first
    QRectF area{0, 0, 1, 1};   ///< of a part: its share of the screen

    /// The warp as it is seen: a screen in simple mode has one, but does not use it.
    [[nodiscard]] Warp::Kind shownKind() const;

    friend bool operator==(const ShowItem&, const ShowItem&) = default;
};

/// A key by which an operator starts something on the Producer.
struct QuickKey {
    QString name;
    QString color; ///< "#rrggbb"

    friend bool operator==(const QuickKey&, const QuickKey&) = default;
};

/// A whole show: its items and what else companions see of it. Plain data; every change that a
/// companion may ask for is checked here and refused, without effect, when it makes no sense.
class Show {
public:
    QString title;
    NetworkCompanion::LV_NTC_PictureType pattern = NetworkCompanion::LV_NTC_PictureType::None;
    int quickKeyRows = 2;
    int quickKeyColumns = 3;
    std::map<quint32, QuickKey> quickKeys; ///< by id, from 1

    /// In the order in which they were added; a part always comes after its screen.
    [[nodiscard]] const std::vector<ShowItem>& items() const { return items_; }
    [[nodiscard]] const ShowItem* find(const ItemKey& key) const;
    [[nodiscard]] const ShowItem* findByDataIndex(quint32 dataIndex) const;
    [[nodiscard]] std::vector<const ShowItem*> partsOf(const ShowItem& screen) const;

    /// The reason why the item cannot be part of the show, or nothing when it was added. A missing
    /// mesh is made straight.
    [[nodiscard]] std::optional<QString> add(ShowItem item);
    /// Also removes the parts of a screen. False when there is no such item.
    bool remove(const ItemKey& key);

    /// Takes coordinates in the unit of the grid. False for an unknown point, or a place that is
    /// not a finite one within reach.
    bool movePoint(const ItemKey& key, bool xy, quint32 point, QPointF place, bool selected);
    /// Rebuilds the mesh. A part without deformation gets a keystone; a screen changes between
    /// simple and deformation mode along with it. False for a kind or grid that cannot be.
    bool setDeformation(const ItemKey& key, Warp::Kind kind, quint32 rows, quint32 columns,
                        bool reset);
    bool setMode(const ItemKey& key, NetworkCompanion::LV_NTC_ModeType mode);
    bool setBlinded(const ItemKey& key, bool blinded);
    /// Forgets what companions had selected in the item.
    void unselectPoints(const ItemKey& key);
    bool setPattern(NetworkCompanion::LV_NTC_PictureType picture);

    friend bool operator==(const Show&, const Show&) = default;

private:
    [[nodiscard]] ShowItem* itemOf(const ItemKey& key);
    void rebuildIndexes();

    std::vector<ShowItem> items_;
    QHash<ItemKey, std::size_t> places_;
    QHash<quint32, std::size_t> placesByDataIndex_;
};
