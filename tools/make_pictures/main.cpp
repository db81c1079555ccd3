#include "tools/make_pictures/TestPatterns.h"
#include "tools/make_pictures/WindowIcon.h"

#include <QDir>
#include <QGuiApplication>
#include <QImageWriter>
#include <QSaveFile>
#include <QSet>

#include <algorithm>

namespace {

/// Converts to the format with the fewest bytes a pixel that loses nothing.
QImage compact(const QImage& image) {
    if (image.isGrayscale())
        return image.convertToFormat(QImage::Format_Grayscale8);
    QSet<QRgb> colors;
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x)
            colors.insert(line[x]);
    }
    constexpr int kPaletteSize = 256;
    if (colors.size() > kPaletteSize)
        return image.convertToFormat(QImage::Format_RGB888);
    QList<QRgb> palette(colors.cbegin(), colors.cend());
    std::sort(palette.begin(), palette.end()); // reproducible files
    return image.convertToFormat(QImage::Format_Indexed8, palette);
}

bool save(const QImage& image, const QString& path) {
    QImageWriter writer(path, "png");
    writer.setCompression(100);
    if (!writer.write(image)) {
        qCritical("%s: %s", qUtf8Printable(path), qUtf8Printable(writer.errorString()));
        return false;
    }
    return true;
}

bool save(const QByteArray& bytes, const QString& path) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        qCritical("%s: %s", qUtf8Printable(path), qUtf8Printable(file.errorString()));
        return false;
    }
    return true;
}

} // namespace

/// meshpad-make-pictures <resources folder>: writes patterns/*.png and icon/Meshpad.ico into it.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() != 2) {
        qCritical("usage: meshpad-make-pictures <resources folder>");
        return 2;
    }
    const QDir folder(arguments.at(1));
    bool saved = folder.mkpath("patterns") && folder.mkpath("icon") &&
                 save(windowIconFile(), folder.filePath("icon/Meshpad.ico"));
    for (const TestPattern& pattern : drawTestPatterns()) {
        saved =
            save(compact(pattern.image), folder.filePath("patterns/" + pattern.fileName)) && saved;
    }
    return saved ? 0 : 1;
}
