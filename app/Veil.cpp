#include "app/Veil.h"

#include "app/shell/Configuration.h"
#include "app/shell/ShellLook.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>

using namespace ShellLook;

Veil::Veil(const Configuration& configuration, QWidget* parent)
    : QWidget(parent), configuration_(configuration) {
    resize(parentWidget()->size());
    setAttribute(Qt::WA_TranslucentBackground, false);
    setAttribute(Qt::WA_StyledBackground, true);
    setAttribute(Qt::WA_StyleSheet, true);
    setFocusPolicy(Qt::StrongFocus);
    setLayout(&layout_);
}

Veil::~Veil() = default;

QPushButton* Veil::createButton(const QString& text, QSize size) {
    button_ = new QPushButton(text, this);
    button_->setFixedSize(size);
    button_->setStyleSheet(QLatin1StringView(kOverlayButton));
    button_->setCursor(Qt::PointingHandCursor);
    connect(button_, &QPushButton::released, this, [this] {
        // When the finger has left the button, Qt emits released(), too.
        if (!QGuiApplication::mouseButtons().testFlag(Qt::LeftButton))
            onButton();
    });
    return button_;
}

QLabel* Veil::createLabel(const QString& text) {
    auto* label = new QLabel(text, this);
    label->setMargin(0);
    return label;
}

void Veil::keyPressEvent(QKeyEvent* event) {
    event->accept(); // so that the main window does not receive it
}

bool Veil::focusNextPrevChild(bool next) {
    Q_UNUSED(next)
    // Tab alternates between the button and the veil itself, which ignores keys.
    QWidget* other = button_->hasFocus() ? static_cast<QWidget*>(this) : button_;
    other->setFocus(Qt::TabFocusReason);
    return true;
}
