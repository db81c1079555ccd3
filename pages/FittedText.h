#pragma once

#include <QFont>
#include <QString>
#include <QTextLayout>

class QPainter;

/// A text laid out to fit a box: wrapped between words, then in smaller type, then wrapped within
/// words, and ended with an ellipsis only when it does not fit in the smallest type.
class FittedText {
public:
    /// Lays the text out; does nothing when all arguments are unchanged. The font size is between
    /// `smallestSize` and that of `font`, both in pixels. Line breaks become blanks.
    void set(const QString& text, const QFont& font, int smallestSize, const QSize& box);

    [[nodiscard]] bool isElided() const { return elided_; }

    /// Draws the text centred in `area`, which has the size of the box, with the painter's pen.
    void draw(QPainter& painter, const QRect& area) const;

private:
    [[nodiscard]] bool layOut(const QFont& font, QTextOption::WrapMode wrapMode);
    void elide();

    QString source_;
    QFont largestFont_;
    int smallestSize_ = 0;
    QSize box_;

    QTextLayout layout_;
    qreal height_ = 0;
    bool elided_ = false;
};
