#include "app/Configuration.h"
#include "app/GuiCompanion.h"
#include "app/KeyRepeatFilter.h"
#include "resources/CompanionResources.h"

#include <QApplication>
#include <QFile>

int main(int argc, char** argv) {
    initCompanionResources();
    QApplication application(argc, argv);
    QApplication::setOrganizationName(QLatin1StringView(ShellLook::kOrganization));
    QApplication::setApplicationName(QLatin1StringView(ShellLook::kApplication));
    QApplication::setApplicationVersion(QLatin1StringView(ShellLook::kVersion));
    // A press that moves at all may start to drag a point.
    QApplication::setStartDragDistance(0);

    QFile styleSheet{QLatin1StringView(ShellLook::kStyleSheetPath)};
    if (styleSheet.open(QIODevice::ReadOnly | QIODevice::Text)) {
        application.setStyleSheet(QString::fromUtf8(styleSheet.readAll()));
        styleSheet.close();
    }

    KeyRepeatFilter keyRepeats(nullptr);
    application.installEventFilter(&keyRepeats);
    GuiCompanion window(nullptr);
    window.show();
    return QApplication::exec();
}
