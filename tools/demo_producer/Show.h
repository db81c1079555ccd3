#pragma once

#include "network/ItemKey.h"
#include "tools/demo_producer/Warp.h"

#include <QHash>
#include <QMap>
#include <QRectF>
#include <QString>

#include <map>
#include <optional>

using NetworkCompanion::ItemKey;

/// A media or texture in the picture of a screen.
struct Layer {
    ItemKey item;
    QRectF area; ///< of the screen, 0 to 1

    friend bool operator==(const Layer&, const Layer&) = default;
};

/// A media, texture, screen or part of a screen.
struct ShowItem {
    ItemKey key;
    quint32 dataIndex = 0; ///< identifies the item in a request for its mesh; unique in a show
    QString name;
    QSize size;            ///< pixels
    double rotation = 0.0; ///< degrees, of the source
    bool blinded = false;
    Warp warp;

    NetworkCompanion::MediaType::Enum mediaType = NetworkCompanion::MediaType::Unknown;
    NetworkCompanion::LV_NTC_ModeType mode = NetworkCompanion::LV_NTC_ModeType::Unset;

    QString picture;           ///< of a media or texture: the name of its generated picture
    std::vector<Layer> layers; ///< of a screen, the lowest first
    QRectF area{0, 0, 1, 1};   ///< of a part: its share of the screen

    /// The kind of deformation that is shown: None for a screen in simple mode.
    [[nodiscard]] Warp::Kind shownKind() const;

    friend bool operator==(const ShowItem&, const ShowItem&) = default;
};

/// A key by which an operator triggers an action of the Producer.
struct QuickKey {
    QString name;
    QString color; ///< "#rrggbb"

    friend bool operator==(const QuickKey&, const QuickKey&) = default;
};

/// A show: its items, pattern and quick keys. Plain data. Every edit is checked here; an invalid
/// one has no effect.
class Show {
public:
    QString title;
    NetworkCompanion::LV_NTC_PictureType pattern = NetworkCompanion::LV_NTC_PictureType::None;
    int quickKeyRows = 2;
    int quickKeyColumns = 3;
    std::map<quint32, QuickKey> quickKeys; ///< by id, from 1

    /// In the order of adding; a part always comes after its screen.
    [[nodiscard]] const std::vector<ShowItem>& items() const { return items_; }
    [[nodiscard]] const ShowItem* find(const ItemKey& key) const;
    [[nodiscard]] const ShowItem* findByDataIndex(quint32 dataIndex) const;
    [[nodiscard]] std::vector<const ShowItem*> partsOf(const ShowItem& screen) const;

    /// Adds the item, with a straight mesh if it has none; otherwise returns the reason why not.
    [[nodiscard]] std::optional<QString> add(ShowItem item);
    /// Also removes the parts of a screen. False when there is no such item.
    bool remove(const ItemKey& key);

    /// Position in pixels (xy) or 0 to 1 (uv). Returns false for an unknown point and for a
    /// position that is not finite or too far away.
    bool movePoint(const ItemKey& key, bool xy, quint32 point, QPointF position, bool selected);
    /// Rebuilds the mesh. A part without deformation gets a keystone; a screen switches between
    /// simple and deformation mode accordingly. Returns false for an impossible kind or grid.
    bool setDeformation(const ItemKey& key, Warp::Kind kind, quint32 rows, quint32 columns,
                        bool reset);
    bool setMode(const ItemKey& key, NetworkCompanion::LV_NTC_ModeType mode);
    bool setBlinded(const ItemKey& key, bool blinded);
    /// Unselects all points of the item.
    void unselectPoints(const ItemKey& key);
    bool setPattern(NetworkCompanion::LV_NTC_PictureType picture);

    friend bool operator==(const Show&, const Show&) = default;

private:
    [[nodiscard]] ShowItem* itemOf(const ItemKey& key);
    void rebuildIndexes();

    std::vector<ShowItem> items_;
    QMap<ItemKey, std::size_t> indexes_;
    QHash<quint32, std::size_t> indexesByDataIndex_;
};
