#pragma once

#include "pages/FittedText.h"

#include <QPushButton>

/// A button of the quick keys page: a name on the Producer's colour. Disabled and empty while no
/// key is assigned.
class QuickKeysButton final : public QPushButton {
    Q_OBJECT

public:
    /// `size` is the maximum size in device-independent pixels.
    QuickKeysButton(const QSize& size, QWidget* parent);

    /// 0 until a key is assigned.
    [[nodiscard]] int id() const { return id_; }
    void setId(int id) { id_ = id; }

    /// Unlike in other button texts, '&' is a plain character.
    void setName(const QString& name);

    /// Whether the name was elided when it was last painted; the tool tip then shows it whole.
    [[nodiscard]] bool isNameElided() const { return name_.isElided(); }

    /// A text that is no colour name gives the neutral colour.
    void setBckgColor(QString color);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    /// A pressed button stays pressed while the finger slides, so that it is not pressed twice.
    bool hitButton(const QPoint& position) const override;
    bool event(QEvent* event) override;
    /// Ends a press, because no release follows.
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// Makes a key visible that is as dark as the page.
    void drawOutline(QPainter& painter) const;
    void drawName(QPainter& painter);
    [[nodiscard]] QColor background() const;

    int id_ = 0;
    QString bckgColor_;
    FittedText name_;
};
