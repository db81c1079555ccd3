#pragma once

#include <QVBoxLayout>
#include <QWidget>

struct Configuration;
class QLabel;
class QPushButton;

/// Covers the whole window, so that mouse, touch and keyboard do not reach the page. Has one
/// button.
class Veil : public QWidget {
    Q_OBJECT

public:
    ~Veil() override;

protected:
    /// Takes the size of `parent`, the main window, which resizes it from then on.
    /// `configuration` outlives the veil.
    Veil(const Configuration& configuration, QWidget* parent);

    // Children, which the caller places in layout_.
    QPushButton* createButton(const QString& text, QSize size);
    QLabel* createLabel(const QString& text);
    /// The button was pressed and released within its area.
    virtual void onButton() = 0;

    void keyPressEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool next) override;

    const Configuration& configuration_;
    QVBoxLayout layout_;

private:
    QPushButton* button_ = nullptr;
};
