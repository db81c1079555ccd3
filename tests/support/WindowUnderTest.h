#pragma once

#include "app/shell/ShellLook.h"
#include "resources/CompanionResources.h"

#include <QApplication>
#include <QFile>
#include <QQuickWidget>
#include <QQuickWindow>
#include <QSettings>
#include <QTemporaryDir>

namespace MeshpadTest {

/// What a test of the whole window needs around it: the program's resources and look, and settings
/// in the place of the operator's.
class WindowUnderTest {
public:
    /// Call it from initTestCase(); false when there is no place for settings, or no look.
    bool prepare() {
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings_.path());
        initCompanionResources();
        QFile styleSheet{QLatin1StringView(ShellLook::kStyleSheetPath)};
        if (!settings_.isValid() || !styleSheet.open(QIODevice::ReadOnly))
            return false;
        qApp->setStyleSheet(QString::fromUtf8(styleSheet.readAll()));
        return true;
    }

    /// Call it before the window goes, while its scene is shown: lets go of what Qt Quick would
    /// keep for later scenes, pictures and their textures.
    static void clear(QQuickWidget* scene) {
        scene->setSource({});
        QQuickWindow().releaseResources();
        scene->grabFramebuffer(); // only a frame lets go of textures
    }

private:
    QTemporaryDir settings_;
};

} // namespace MeshpadTest
