#include "app/GuiCompanion.h"
#include "app/KeyRepeatFilter.h"
#include "app/ToolTipFilter.h"
#include "app/graphics/GraphicsProcessor.h"
#include "app/shell/ShellLook.h"
#include "resources/CompanionResources.h"

#include <QApplication>
#include <QFile>

namespace {

/// Selects Qt Quick's software renderer where OpenGL would be emulated, because it draws the mesh
/// many times faster in half the memory. QT_QUICK_BACKEND overrides the choice ("rhi" is OpenGL).
void chooseRenderer() {
    constexpr char kRenderer[] = "QT_QUICK_BACKEND";
    if (!qEnvironmentVariableIsSet(kRenderer) && !hasGraphicsProcessor())
        qputenv(kRenderer, "software");
}

} // namespace

int main(int argc, char** argv) {
    initCompanionResources();
    chooseRenderer();
    QApplication application(argc, argv);
    QApplication::setOrganizationName(QLatin1StringView(ShellLook::kOrganization));
    QApplication::setApplicationName(QLatin1StringView(ShellLook::kApplication));
    QApplication::setApplicationVersion(QLatin1StringView(ShellLook::kVersion));
    // Any movement of a pressed pointer may start a drag of a point.
    QApplication::setStartDragDistance(0);

    QFile styleSheet{QLatin1StringView(ShellLook::kStyleSheetPath)};
    if (styleSheet.open(QIODevice::ReadOnly | QIODevice::Text)) {
        application.setStyleSheet(QString::fromUtf8(styleSheet.readAll()));
        styleSheet.close();
    }

    KeyRepeatFilter keyRepeats(nullptr);
    application.installEventFilter(&keyRepeats);
    ToolTipFilter toolTips(nullptr);
    application.installEventFilter(&toolTips);
    GuiCompanion window(nullptr);
    window.show();
    return QApplication::exec();
}
