#pragma once

#include "app/shell/Configuration.h"
#include "pages/PagesLook.h"

#include <QAbstractButton>
#include <QPixmap>

/// A test pattern to choose: its name and thumbnail in a frame whose colour tells whether it is the
/// active one.
class TestPatternButton final : public QAbstractButton {
    Q_OBJECT

public:
    /// `size` is in device-independent pixels. Without a picture at the pattern's path, frame and
    /// name are drawn alone.
    TestPatternButton(const Pattern& pattern, const QSize& size, QWidget* parent);

    [[nodiscard]] const QString& color() const { return color_; }
    /// Takes the name of a colour; shown by the next painting.
    void setColor(const QString& color) { color_ = color; }

    /// Makes the picture ready to be painted, which takes some milliseconds the first time and
    /// after a change of size or screen.
    void preparePicture();

    [[nodiscard]] QSize sizeHint() const override { return size_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void drawFrame(QPainter& painter) const;
    void drawName(QPainter& painter) const;
    void drawPicture(QPainter& painter) const;
    /// Tells the pointer over the button, and the finger on it, as on every other button.
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

    QPixmap picture_;   ///< scaled to the pixels it takes on the screen
    QSize pictureSize_; ///< in those pixels; what picture_ was last made for
};
