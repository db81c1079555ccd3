#pragma once

#include "tools/demo_producer/PictureSource.h"
#include "tools/demo_producer/ProducerSession.h"

#include <QColor>
#include <QStringList>

class QPainter;

/// The banner of a quick key that was just executed.
struct KeyFlash {
    quint32 id = 0;
    QString name;
    QColor color;
    double strength = 0.0; ///< 1 to 0 while it fades
};

/// What the window shows besides the session.
struct ViewState {
    QString producerName;
    QString address;      ///< at which companions reach it
    double seconds = 0.0; ///< the time of moving pictures
    QStringList log;      ///< the newest line last
    std::optional<KeyFlash> flash;
    bool meshes = false; ///< draw the mesh of every output
};

/// Paints the Producer's window: the picture of every screen, media and texture through its warp,
/// with test pattern, blinds and the companions' points; quick keys and the log.
class ShowPainter {
public:
    void paint(QPainter& painter, const QRectF& area, const ProducerSession& session,
               const ViewState& view);

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
    const ViewState* view_ = nullptr;          // while painting
    PictureSource pictures_;
    QMap<ItemKey, QImage> currentPictures_; ///< at the time that is painted
};
