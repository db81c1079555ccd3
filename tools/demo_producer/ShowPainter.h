#pragma once

#include "tools/demo_producer/PictureSource.h"
#include "tools/demo_producer/ProducerSession.h"

#include <QColor>
#include <QStringList>

class QPainter;

/// A quick key that was executed a moment ago.
struct KeyFlash {
    quint32 id = 0;
    QString name;
    QColor color;
    double strength = 0.0; ///< 1 at first, 0 when it is over
};

/// What the picture of a session shows besides the session itself.
struct Stage {
    QString producerName;
    QString address;      ///< where companions find it
    double seconds = 0.0; ///< the moment at which moving pictures are shown
    QStringList log;      ///< the newest line last
    std::optional<KeyFlash> flash;
    bool meshes = false; ///< draws the mesh of every output
};

/// Paints a session for whoever stands before the Producer: every screen as its projectors would
/// show it, every media and texture as it is bent, test pattern, blinds, the companions' points,
/// quick keys, and what happened last.
class ShowPainter {
public:
    void paint(QPainter& painter, const QRectF& area, const ProducerSession& session,
               const Stage& stage);

private:
    void paintHeader(QPainter& painter, const QRectF& area) const;
    void paintOutput(QPainter& painter, const QRectF& raster, const ShowItem& screen);
    void paintElement(QPainter& painter, const QRectF& tile, const ShowItem& item);
    void paintLog(QPainter& painter, const QRectF& area) const;
    void paintQuickKeys(QPainter& painter, const QRectF& area) const;
    static void paintFlash(QPainter& painter, const QRectF& area, const KeyFlash& flash);
    void paintMesh(QPainter& painter, const ShowItem& item, const QTransform& toRaster) const;
    void paintRemotePoints(QPainter& painter, const ShowItem& item, bool xy,
                           const QTransform& toRaster) const;

    [[nodiscard]] QImage pictureOf(const ShowItem& item);
    [[nodiscard]] QImage composition(const ShowItem& screen, QSize size);
    [[nodiscard]] bool isUvEdited(const ShowItem& item) const;

    const ProducerSession* session_ = nullptr; // while painting
    const Stage* stage_ = nullptr;             // while painting
    PictureSource pictures_;
    QHash<ItemKey, QImage> moment_; ///< the pictures of this moment
};
