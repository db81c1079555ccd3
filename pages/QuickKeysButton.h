#pragma once

#include "pages/FittedText.h"

#include <QPushButton>

/// One quick key: a name on a ground of the Producer's colour. Without a key it is disabled and
/// empty.
class QuickKeysButton final : public QPushButton {
    Q_OBJECT

public:
    /// `size` is the largest it gets, in device-independent pixels.
    QuickKeysButton(const QSize& size, QWidget* parent);

    /// 0 until a key is assigned.
    [[nodiscard]] int id() const { return id_; }
    void setId(int id) { id_ = id; }

    /// Shown as it is: unlike in other button texts, an '&' has no meaning.
    void setName(const QString& name);

    /// Whether the name was too long for the size at which it was last painted; a tool tip has it
    /// whole then.
    [[nodiscard]] bool isNameElided() const { return name_.isElided(); }

    /// A text that is no colour leaves the button in the neutral one.
    void setBckgColor(QString color);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    /// A finger that slides off the key and back has not pressed it again.
    bool hitButton(const QPoint& position) const override;
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// So that a key as dark as the page is seen to be a key.
    void drawOutline(QPainter& painter) const;
    void drawName(QPainter& painter);
    [[nodiscard]] QColor ground() const;

    int id_ = 0;
    QString bckgColor_;
    FittedText name_;
};
