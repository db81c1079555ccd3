#include "app/ConnectingOverlay.h"

#include "app/shell/Configuration.h"
#include "app/shell/ShellLook.h"

#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>

ConnectingOverlay::ConnectingOverlay(const Configuration& configuration, const QString& address,
                                     QWidget* parent)
    : Veil(configuration, parent) {
    QLabel* label = createLabel(configuration_.connectingText.arg(address));
    QFont font = label->font();
    font.setPointSize(ShellLook::kDisconnectedPoints);
    font.setBold(true);
    label->setFont(font);

    layout_.addStretch();
    layout_.addWidget(label, 0, Qt::AlignHCenter);
    layout_.addSpacing(configuration_.cancelButtonGap);
    layout_.addWidget(
        createButton(configuration_.cancelButtonText, configuration_.cancelButtonSize), 0,
        Qt::AlignHCenter);
    layout_.addStretch();
}

void ConnectingOverlay::keyPressEvent(QKeyEvent* event) {
    Veil::keyPressEvent(event);
    if (event->key() == Qt::Key_Escape && !event->isAutoRepeat())
        emit cancelled();
}
