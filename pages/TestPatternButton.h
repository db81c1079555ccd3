#pragma once

#include "app/shell/Configuration.h"
#include "pages/PagesLook.h"

#include <QAbstractButton>
#include <QPixmap>

/// The button of a test pattern: name and thumbnail in a frame with the colour of its state.
class TestPatternButton final : public QAbstractButton {
    Q_OBJECT

public:
    /// `size` is in device-independent pixels. A picture that does not load is left out.
    TestPatternButton(const Pattern& pattern, const QSize& size, QWidget* parent);

    [[nodiscard]] const QString& color() const { return color_; }
    /// The name of the frame's colour; used by the next paint.
    void setColor(const QString& color) { color_ = color; }

    /// Loads and scales the picture; takes some milliseconds the first time and after a change of
    /// size or screen.
    void preparePicture();

    [[nodiscard]] QSize sizeHint() const override { return size_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void drawFrame(QPainter& painter) const;
    void drawName(QPainter& painter) const;
    void drawPicture(QPainter& painter) const;
    /// A border while the pointer is over the button or presses it.
    void drawBorder(QPainter& painter) const;
    [[nodiscard]] QRect pictureArea() const;

    Pattern pattern_;
    QSize size_;
    int radius_ = PagesLook::kPatternRadius;
    int textHeight_ = PagesLook::kPatternTextHeight;
    int fontSize_ = PagesLook::kFontSize;
    int penWidth_ = PagesLook::kPatternPenWidth;
    QString color_ = QLatin1StringView(PagesLook::kIdleColor);
    QString textColor_ = QLatin1StringView(PagesLook::kTextColor);

    QPixmap picture_;   ///< scaled to device pixels
    QSize pictureSize_; ///< the size in device pixels that picture_ was made for
};
