// main() of the benchmarks of widgets: the application with its resources and style sheet.

#include "app/shell/ShellLook.h"
#include "resources/CompanionResources.h"

#include <QApplication>
#include <QFile>

#include <benchmark/benchmark.h>

int main(int argc, char** argv) {
    initCompanionResources();
    QApplication application(argc, argv);
    QFile styleSheet(QLatin1StringView(ShellLook::kStyleSheetPath));
    if (styleSheet.open(QIODevice::ReadOnly | QIODevice::Text))
        application.setStyleSheet(QString::fromUtf8(styleSheet.readAll()));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
