#pragma once

#include <QFont>
#include <QString>
#include <QTextLayout>

class QPainter;

/// A text set into a box so that nothing of it is cut off: wrapped between words, if need be in
/// smaller type or within words, and only when even the smallest is too large, ended early with an
/// ellipsis.
class FittedText {
public:
    /// Sets the text unless it is set that way already. `font` has a size in pixels, the largest
    /// that is used; the smallest is `smallestSize`. Every kind of line break becomes a blank.
    void set(const QString& text, const QFont& font, int smallestSize, const QSize& box);

    [[nodiscard]] bool isElided() const { return elided_; }

    /// Draws the text into the middle of `area`, which is as large as the box, in the painter's
    /// pen.
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
