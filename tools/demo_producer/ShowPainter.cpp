#include "tools/demo_producer/ShowPainter.h"

#include "tools/demo_producer/ShowNames.h"
#include "tools/demo_producer/WarpPainter.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

using namespace NetworkCompanion;

namespace {

const QColor kBackground(0x12, 0x14, 0x18);
const QColor kPanel(0x1b, 0x1e, 0x24);
const QColor kLine(0x33, 0x38, 0x42);
const QColor kText(0xec, 0xee, 0xf1);
const QColor kDim(0x8d, 0x95, 0xa1);
const QColor kAccent(0x00, 0x96, 0xff);
const QColor kAlert(0xff, 0x5c, 0x4d);

constexpr double kMargin = 20;
constexpr double kGap = 16;
constexpr double kHeaderHeight = 52;
constexpr double kCaptionHeight = 24;
constexpr double kLeastElementHeight = 90;
constexpr double kMostElementHeight = 190;
constexpr double kFooterHeight = 150;
constexpr double kLogLineHeight = 19;
constexpr std::size_t kMostScreens = 12;
constexpr std::size_t kMostElements = 7;
/// Resolution of a screen's picture relative to its output: warps magnify parts of it.
constexpr double kPictureScale = 1.4;

QFont fontOf(int pixels, QFont::Weight weight = QFont::Normal) {
    QFont font;
    font.setPixelSize(pixels);
    font.setWeight(weight);
    return font;
}

void drawText(QPainter& painter, const QRectF& area, Qt::Alignment alignment, const QString& text,
              int pixels, const QColor& color, QFont::Weight weight = QFont::Normal) {
    painter.setFont(fontOf(pixels, weight));
    painter.setPen(color);
    const QFontMetricsF metrics(painter.font());
    painter.drawText(area, int(alignment | Qt::AlignVCenter) | Qt::TextSingleLine,
                     metrics.elidedText(text, Qt::ElideRight, area.width()));
}

/// Black or white, for text on that background.
QColor readableOn(const QColor& background) {
    constexpr int kMiddle = 128;
    return qGray(background.rgb()) > kMiddle ? Qt::black : Qt::white;
}

double textWidth(const QString& text, int pixels, QFont::Weight weight = QFont::Normal) {
    return QFontMetricsF(fontOf(pixels, weight)).horizontalAdvance(text);
}

void drawPanel(QPainter& painter, const QRectF& area) {
    painter.setPen(QPen(kLine, 1));
    painter.setBrush(kPanel);
    painter.drawRoundedRect(area.adjusted(0.5, 0.5, -0.5, -0.5), 6, 6);
}

/// Draws a framed label that ends at `right`; returns its left edge.
double drawTag(QPainter& painter, double right, double centreY, const QString& text,
               const QColor& color) {
    const double width = textWidth(text, 12, QFont::Bold) + 16;
    const QRectF frame(right - width, centreY - 9, width, 18);
    painter.setPen(QPen(color, 1));
    painter.setBrush(QColor(color.red(), color.green(), color.blue(), 40));
    painter.drawRoundedRect(frame, 4, 4);
    drawText(painter, frame, Qt::AlignHCenter, text, 12, color, QFont::Bold);
    return frame.left();
}

/// Draws the name on the left, tag and info on the right; the tag may be empty.
void drawCaption(QPainter& painter, const QRectF& area, const QString& name, const QString& tag,
                 const QString& info) {
    double right = area.right();
    if (!tag.isEmpty())
        right = drawTag(painter, right, area.center().y(), tag, kAlert) - 8;
    const double width = textWidth(info, 12);
    drawText(painter, QRectF(right - width, area.y(), width + 1, area.height()), Qt::AlignLeft,
             info, 12, kDim);
    drawText(painter, area.adjusted(0, 0, right - width - 8 - area.right(), 0), Qt::AlignLeft, name,
             14, kText, QFont::DemiBold);
}

QString gridText(const Warp& warp, Warp::Kind kind) {
    if (kind == Warp::Kind::None)
        return QStringLiteral("not bent");
    if (kind == Warp::Kind::Keystone)
        return nameOf(kind);
    return QStringLiteral("%1 %2 × %3").arg(nameOf(kind)).arg(warp.rows).arg(warp.columns);
}

/// Maps an item's pixels, counted from its centre, to a rectangle that shows the whole item.
QTransform toRect(const ShowItem& item, const QRectF& area) {
    QTransform transform;
    transform.translate(area.center().x(), area.center().y());
    transform.scale(area.width() / item.size.width(), area.height() / item.size.height());
    transform.rotate(item.rotation);
    return transform;
}

/// The part's rectangle in its screen's.
QRectF rectIn(const QRectF& area, const QRectF& whole) {
    return {whole.x() + area.x() * whole.width(), whole.y() + area.y() * whole.height(),
            area.width() * whole.width(), area.height() * whole.height()};
}

Warp shownWarp(const ShowItem& item) {
    return item.shownKind() == Warp::Kind::None ? Warp::straight(Warp::Kind::None, 2, 2, item.size)
                                                : item.warp;
}

QImage blank(QSize size, const QColor& color) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(color);
    return image;
}

QPolygonF line(const Surface& surface, const QTransform& transform, bool along, double at,
               int steps) {
    const std::vector<double> parameters = evenParameters(steps);
    QPolygonF polygon;
    for (const QPointF& point :
         along ? surface.sample(parameters, {at}) : surface.sample({at}, parameters))
        polygon.append(transform.map(point));
    return polygon;
}

/// Draws a lattice that makes deformations visible in any picture.
void drawLattice(QPainter& painter, QSize size) {
    const QColor line(255, 255, 255, 50);
    const QColor rim(255, 255, 255, 200);
    constexpr int kColumns = 16;
    constexpr int kRows = 9;
    constexpr int kRim = 2;
    for (int i = 1; i < kColumns; ++i)
        painter.fillRect(size.width() * i / kColumns, 0, 1, size.height(), line);
    for (int i = 1; i < kRows; ++i)
        painter.fillRect(0, size.height() * i / kRows, size.width(), 1, line);
    painter.fillRect(0, 0, size.width(), kRim, rim);
    painter.fillRect(0, size.height() - kRim, size.width(), kRim, rim);
    painter.fillRect(0, 0, kRim, size.height(), rim);
    painter.fillRect(size.width() - kRim, 0, kRim, size.height(), rim);
}

/// Column count and tile size of the grid with the largest tiles that holds all of them.
struct Tiling {
    int columns = 1;
    QSizeF tile;
};

Tiling tilingFor(int count, QSizeF area, double proportions) {
    Tiling best;
    for (int columns = 1; columns <= count; ++columns) {
        const int rows = (count + columns - 1) / columns;
        const double width = (area.width() - (columns - 1) * kGap) / columns;
        const double height = (area.height() - (rows - 1) * kGap) / rows - kCaptionHeight;
        const double fitting = std::min(width, height * proportions);
        if (fitting > best.tile.width())
            best = {columns, QSizeF(fitting, fitting / proportions)};
    }
    return best;
}

/// The image at half its size. Outputs are drawn at twice their size and halved to smooth the edges
/// of warps, because antialiasing leaves gaps between the cells of a warp.
QImage halved(const QImage& image) {
    return image.scaled(image.size() / 2, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

constexpr double kPointReach = 9; ///< from the centre of a point's image to its edge

/// The image of a companion's control point, painted once for the thousands in a mesh.
QImage pointImage(int shape, const QColor& color, bool selected, double size) {
    const double r = selected ? 6.0 : 4.0;
    QImage image = blank(QSize(1, 1) * int(4 * kPointReach), Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(2, 2);
    painter.translate(kPointReach, kPointReach);
    painter.scale(size, size);
    painter.setBrush(selected ? QColor(color.red(), color.green(), color.blue(), 150)
                              : QColor(Qt::transparent));
    // The wider dark pen first, for contrast on bright pictures.
    for (const QPen& pen : {QPen(QColor(0, 0, 0, 170), 4), QPen(color, 2)}) {
        painter.setPen(pen);
        switch (shape) {
        case 1:
            painter.setBrush(color);
            painter.drawEllipse(QPointF(), r * 0.55, r * 0.55);
            break;
        case 2:
            painter.drawLine(QPointF(-r, 0), QPointF(r, 0));
            painter.drawLine(QPointF(0, -r), QPointF(0, r));
            break;
        case 3:
            painter.drawEllipse(QPointF(), r, r);
            break;
        default:
            painter.drawRect(QRectF(-r, -r, 2 * r, 2 * r));
        }
    }
    painter.end();
    return halved(image);
}

} // namespace

void ShowPainter::paint(QPainter& painter, const QRectF& area, const ProducerSession& session,
                        const ViewState& view) {
    session_ = &session;
    view_ = &view;
    currentPictures_.clear();
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.fillRect(area, kBackground);

    std::vector<const ShowItem*> screens;
    std::vector<const ShowItem*> elements;
    for (const ShowItem& item : session.show().items()) {
        if (item.key.type == LV_NTC_ElementType::Screen && screens.size() < kMostScreens)
            screens.push_back(&item);
        if (item.key.type <= LV_NTC_ElementType::Texture && elements.size() < kMostElements)
            elements.push_back(&item);
    }

    paintHeader(painter, QRectF(area.x(), area.y(), area.width(), kHeaderHeight));
    QRectF rest = area.adjusted(kMargin, kHeaderHeight + kGap, -kMargin, -kMargin);

    const double strip = elements.empty() ? 0 : kCaptionHeight + kGap;
    const double leastStrip = elements.empty() ? 0 : strip + kLeastElementHeight;
    const Tiling outputs =
        tilingFor(int(screens.size()),
                  {rest.width(), rest.height() - leastStrip - kFooterHeight - kGap}, 16.0 / 9.0);
    const QRectF outputsArea = rest;
    const double left =
        rest.center().x() - (outputs.columns * (outputs.tile.width() + kGap) - kGap) / 2;
    for (std::size_t i = 0; i < screens.size(); ++i) {
        const int column = int(i) % outputs.columns;
        const int row = int(i) / outputs.columns;
        const QRectF tile(left + column * (outputs.tile.width() + kGap),
                          outputsArea.y() + row * (outputs.tile.height() + kCaptionHeight + kGap),
                          outputs.tile.width(), outputs.tile.height());
        paintOutput(painter, tile.toRect(), *screens[i]);
        rest.setTop(tile.bottom() + kCaptionHeight + kGap);
    }

    if (!elements.empty()) {
        const auto count = double(elements.size());
        const double height = std::clamp(rest.height() - kFooterHeight - strip, kLeastElementHeight,
                                         kMostElementHeight);
        const double width =
            std::min((rest.width() - kGap * (count - 1)) / count, kMostElementHeight * 1.6);
        for (std::size_t i = 0; i < elements.size(); ++i)
            paintElement(
                painter,
                QRectF(rest.x() + double(i) * (width + kGap), rest.y(), width, height).toRect(),
                *elements[i]);
        rest.setTop(rest.top() + height + strip);
    }

    const double keysWidth = std::min(460.0, rest.width() * 0.4);
    paintLog(painter, rest.adjusted(0, 0, -keysWidth - kGap, 0));
    paintQuickKeys(painter, rest.adjusted(rest.width() - keysWidth, 0, 0, 0));
    if (view.flash)
        paintFlash(painter, outputsArea, *view.flash);
    session_ = nullptr;
    view_ = nullptr;
}

void ShowPainter::paintHeader(QPainter& painter, const QRectF& area) const {
    painter.fillRect(area, kPanel);
    painter.fillRect(QRectF(area.x(), area.bottom() - 1, area.width(), 1), kLine);
    const double middle = area.center().y();
    double left = area.x() + kMargin;
    const auto write = [&](const QString& text, int pixels, const QColor& color,
                           QFont::Weight weight) {
        const double width = textWidth(text, pixels, weight) + 2;
        drawText(painter, QRectF(left, area.y(), width, area.height()), Qt::AlignLeft, text, pixels,
                 color, weight);
        left += width + 14;
    };
    write(view_->producerName, 19, kText, QFont::Bold);
    write(session_->show().title, 17, kAccent, QFont::DemiBold);
    write(QStringLiteral("%1 items").arg(session_->show().items().size()), 13, kDim, QFont::Normal);
    write(view_->address, 13, kDim, QFont::Normal);
    if (session_->show().pattern != LV_NTC_PictureType::None) {
        const QString text = QStringLiteral("PATTERN  ") + nameOf(session_->show().pattern);
        left += textWidth(text, 12, QFont::Bold) + 16;
        drawTag(painter, left, middle, text, QColor(0xff, 0xb0, 0x20));
        left += 14;
    }

    double right = area.right() - kMargin;
    const auto& companions = session_->companions();
    if (companions.empty())
        drawText(painter, QRectF(left, area.y(), right - left, area.height()), Qt::AlignRight,
                 QStringLiteral("no companion connected"), 13, kDim);
    for (auto entry = companions.rbegin(); entry != companions.rend(); ++entry) {
        const auto& [id, companion] = *entry;
        const ShowItem* const item =
            companion.editing ? session_->show().find(*companion.editing) : nullptr;
        const QString text = QStringLiteral("%1  %2").arg(companion.address,
                                                          item ? item->name : QStringLiteral("–"));
        const double width = textWidth(text, 13) + 34;
        if (right - width < left) {
            drawText(painter, QRectF(left, area.y(), right - left, area.height()), Qt::AlignRight,
                     QStringLiteral("%1 companions").arg(companions.size()), 13, kDim);
            break;
        }
        const QRectF chip(right - width, middle - 14, width, 28);
        painter.setPen(QPen(kLine, 1));
        painter.setBrush(kBackground);
        painter.drawRoundedRect(chip, 14, 14);
        const QColor color(companion.pointColor);
        const QPointF dot(chip.left() + 15, middle);
        if (companion.pointShape > 0) {
            painter.drawImage(dot - QPointF(kPointReach, kPointReach),
                              pointImage(companion.pointShape, color, false, 1.0));
        } else {
            painter.setPen(Qt::NoPen);
            painter.setBrush(QColor(0x3d, 0xdc, 0x84));
            painter.drawEllipse(dot, 4, 4);
        }
        drawText(painter, chip.adjusted(27, 0, 0, 0), Qt::AlignLeft, text, 13, kText);
        right = chip.left() - 8;
    }
}

QImage ShowPainter::pictureOf(const ShowItem& item) {
    QImage& picture = currentPictures_[item.key];
    if (picture.isNull())
        picture = pictures_.picture(item, view_->seconds);
    return picture;
}

QImage ShowPainter::composition(const ShowItem& screen, QSize size) {
    const Show& show = session_->show();
    if (show.pattern != LV_NTC_PictureType::None)
        return pictures_.pattern(show.pattern, size, view_->seconds);
    QImage image = blank(size, QColor(0x0a, 0x0c, 0x12));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (const Layer& layer : screen.layers) {
        const ShowItem* const item = show.find(layer.item);
        if (!item || item->blinded)
            continue;
        WarpPainter::draw(painter, pictureOf(*item), {0, 0, 1, 1}, shownWarp(*item),
                          toRect(*item, rectIn(layer.area, QRectF(QPointF(), QSizeF(size)))));
    }
    drawLattice(painter, size);
    return image;
}

void ShowPainter::paintOutput(QPainter& painter, const QRectF& raster, const ShowItem& screen) {
    const QSizeF fitted = QSizeF(screen.size).scaled(raster.size(), Qt::KeepAspectRatio);
    const QRectF frame =
        QRectF(raster.center() - QPointF(fitted.width(), fitted.height()) / 2, fitted).toRect();
    painter.fillRect(raster, Qt::black);
    const std::vector<const ShowItem*> parts = session_->show().partsOf(screen);
    const bool inParts = screen.mode == LV_NTC_ModeType::Parts && !parts.empty();
    painter.save();
    painter.setClipRect(frame);
    if (!screen.blinded) {
        const QSize size = frame.size().toSize();
        const QRectF whole({}, QSizeF(size) * 2);
        const QImage picture = composition(screen, (frame.size() * kPictureScale).toSize());
        QImage output = blank(size * 2, Qt::black);
        QPainter outputPainter(&output);
        outputPainter.setRenderHint(QPainter::SmoothPixmapTransform);
        if (inParts) {
            for (const ShowItem* part : parts) {
                if (!part->blinded)
                    WarpPainter::draw(outputPainter, picture, part->area, part->warp,
                                      toRect(*part, rectIn(part->area, whole)));
            }
        } else {
            WarpPainter::draw(outputPainter, picture, {0, 0, 1, 1}, shownWarp(screen),
                              toRect(screen, whole));
        }
        outputPainter.end();
        painter.drawImage(frame.topLeft(), halved(output));
    }
    const auto overlay = [&](const ShowItem& item, const QRectF& area) {
        const QTransform transform = toRect(item, area);
        if (view_->meshes)
            paintMesh(painter, item, transform);
        paintRemotePoints(painter, item, true, transform);
    };
    if (inParts)
        for (const ShowItem* part : parts)
            overlay(*part, rectIn(part->area, frame));
    else
        overlay(screen, frame);
    painter.restore();
    painter.setPen(QPen(kLine, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(raster.adjusted(-0.5, -0.5, 0.5, 0.5));

    const QRectF caption(raster.x(), raster.bottom() + 2, raster.width(), kCaptionHeight);
    const auto blindedParts = std::ranges::count_if(parts, &ShowItem::blinded);
    QString tag;
    if (screen.blinded)
        tag = QStringLiteral("BLIND");
    else if (inParts && blindedParts > 0)
        tag = QStringLiteral("BLIND %1 OF %2").arg(blindedParts).arg(parts.size());
    drawCaption(painter, caption, screen.name, tag,
                inParts ? QStringLiteral("%1 parts").arg(parts.size())
                        : gridText(screen.warp, screen.shownKind()));
}

bool ShowPainter::isUvEdited(const ShowItem& item) const {
    return std::ranges::any_of(
        session_->companions(),
        [&item](const auto& entry) {
            return entry.second.editing == item.key && entry.second.editsUv;
        });
}

void ShowPainter::paintElement(QPainter& painter, const QRectF& tile, const ShowItem& item) {
    drawPanel(painter, tile);
    painter.save();
    painter.setClipRect(tile.adjusted(1, 1, -1, -1));
    const QSizeF fitted = QSizeF(item.size).scaled(tile.size() * 0.82, Qt::KeepAspectRatio);
    const QRectF frame(tile.center() - QPointF(fitted.width(), fitted.height()) / 2, fitted);
    const bool uv = isUvEdited(item);
    // While a companion edits texture coordinates, the tile shows the source with the mesh on it.
    const Warp warp = uv ? Warp::straight(Warp::Kind::None, 2, 2, item.size) : shownWarp(item);
    if (!item.blinded) {
        QImage image = blank(tile.size().toSize() * 2, kPanel);
        QTransform transform = toRect(item, frame.translated(-tile.topLeft()));
        transform *= QTransform::fromScale(2, 2);
        QPainter imagePainter(&image);
        imagePainter.setRenderHint(QPainter::SmoothPixmapTransform);
        WarpPainter::draw(imagePainter, pictureOf(item), {0, 0, 1, 1}, warp, transform);
        imagePainter.end();
        painter.drawImage(tile.topLeft(), halved(image));
    }
    painter.setPen(QPen(QColor(255, 255, 255, 60), 1, Qt::DotLine));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(frame);
    if (view_->meshes && !uv)
        paintMesh(painter, item, toRect(item, frame));
    if (uv) {
        QTransform unit; // maps 0 ... 1 to the source
        unit.translate(frame.x(), frame.y());
        unit.scale(frame.width(), frame.height());
        paintRemotePoints(painter, item, false, unit);
    } else {
        paintRemotePoints(painter, item, true, toRect(item, frame));
    }
    painter.restore();

    const QRectF caption(tile.x(), tile.bottom() + 1, tile.width(), kCaptionHeight);
    drawCaption(painter, caption, item.name, item.blinded ? QStringLiteral("BLIND") : QString(),
                uv ? QStringLiteral("UV") : gridText(item.warp, item.shownKind()));
}

void ShowPainter::paintMesh(QPainter& painter, const ShowItem& item,
                            const QTransform& toRaster) const {
    if (item.shownKind() == Warp::Kind::None)
        return;
    const Surface surface = item.warp.xySurface();
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(255, 255, 255, 150), 1));
    const int columns = surface.patchColumns();
    const int rows = surface.patchRows();
    for (int i = 0; i <= columns; ++i)
        painter.drawPolyline(
            line(surface, toRaster, false, double(i) / columns, WarpPainter::steps(rows)));
    for (int i = 0; i <= rows; ++i)
        painter.drawPolyline(
            line(surface, toRaster, true, double(i) / rows, WarpPainter::steps(columns)));
}

void ShowPainter::paintRemotePoints(QPainter& painter, const ShowItem& item, bool xy,
                                    const QTransform& toRaster) const {
    if (item.shownKind() == Warp::Kind::None)
        return;
    for (const auto& [id, companion] : session_->companions()) {
        if (companion.editing != item.key || companion.pointShape == 0)
            continue;
        const QColor color(companion.pointColor);
        const auto& points = xy ? item.warp.xy : item.warp.uv;
        // Dense meshes get small points, so that the picture remains visible.
        const QRectF shown =
            toRaster.mapRect(QRectF(QPointF(), xy ? QSizeF(item.size) : QSizeF(1, 1)));
        const double spacing = std::sqrt(shown.width() * shown.height() / double(points.size()));
        const double size = std::clamp(spacing / 18.0, 0.25, 1.0);
        for (const bool selected : {false, true}) { // selected ones on top
            const QImage image = pointImage(companion.pointShape, color, selected, size);
            for (const ControlPoint& point : points) {
                if (point.selected == selected)
                    painter.drawImage(
                        (toRaster.map(point.position) - QPointF(kPointReach, kPointReach))
                            .toPoint(),
                        image);
            }
        }
    }
}

void ShowPainter::paintLog(QPainter& painter, const QRectF& area) const {
    drawPanel(painter, area);
    const QRectF inside = area.adjusted(14, 10, -14, -10);
    const int lines = std::max(0, int(inside.height() / kLogLineHeight));
    const qsizetype first = std::max<qsizetype>(0, view_->log.size() - lines);
    for (qsizetype i = first; i < view_->log.size(); ++i)
        drawText(painter,
                 QRectF(inside.x(), inside.y() + double(i - first) * kLogLineHeight, inside.width(),
                        kLogLineHeight),
                 Qt::AlignLeft, view_->log[i], 12, i == view_->log.size() - 1 ? kText : kDim);
}

void ShowPainter::paintQuickKeys(QPainter& painter, const QRectF& area) const {
    drawPanel(painter, area);
    const Show& show = session_->show();
    const QRectF inside = area.adjusted(12, 12, -12, -12);
    const int count = int(show.quickKeys.size());
    if (count == 0)
        return;
    const int columns = std::min(4, count);
    const int rows = (count + columns - 1) / columns;
    const double gap = 8;
    const double width = (inside.width() - (columns - 1) * gap) / columns;
    const double height = std::min(44.0, (inside.height() - (rows - 1) * gap) / rows);
    int index = 0;
    for (const auto& [id, key] : show.quickKeys) {
        const int column = index % columns;
        const int row = index / columns;
        const QRectF button(inside.x() + column * (width + gap), inside.y() + row * (height + gap),
                            width, height);
        ++index;
        const double strength =
            view_->flash && view_->flash->id == id ? view_->flash->strength : 0.0;
        const bool pressed = strength > 0.0;
        QColor color(key.color);
        if (!color.isValid())
            color = kLine;
        painter.setPen(pressed ? QPen(Qt::white, 2) : QPen(Qt::NoPen));
        painter.setBrush(pressed ? color.lighter(100 + int(70 * strength)) : color);
        painter.drawRoundedRect(button, 6, 6);
        if (height >= 12)
            drawText(painter, button.adjusted(6, 0, -6, 0), Qt::AlignHCenter, key.name, 13,
                     readableOn(painter.brush().color()), QFont::DemiBold);
    }
}

void ShowPainter::paintFlash(QPainter& painter, const QRectF& area, const KeyFlash& flash) {
    QColor color = flash.color;
    painter.setOpacity(std::clamp(flash.strength, 0.0, 1.0));
    const double width = textWidth(flash.name, 40, QFont::Bold) + 90;
    const QRectF banner(area.center().x() - width / 2, area.y() + 78, width, 76);
    painter.setPen(QPen(Qt::white, 2));
    color.setAlpha(235);
    painter.setBrush(color);
    painter.drawRoundedRect(banner, 12, 12);
    drawText(painter, banner, Qt::AlignHCenter, flash.name, 40, readableOn(color), QFont::Bold);
    painter.setOpacity(1.0);
}
