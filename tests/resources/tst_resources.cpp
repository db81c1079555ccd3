// The pictures and the style sheet that the program is compiled with: whatever the record or a
// style names must be there, loadable, sharp and whole.

#include "app/shell/Configuration.h"
#include "app/shell/ShellLook.h"
#include "pages/PagesLook.h"
#include "resources/CompanionResources.h"

#include <QDirIterator>
#include <QFile>
#include <QIcon>
#include <QImageReader>
#include <QPainter>
#include <QRegularExpression>
#include <QTest>
#include <QUrl>
#include <QWidget>

namespace {

const QColor kBackground(0x1e, 0x1e, 0x1e);

QString resourcePath(const QString& text) {
    return text.startsWith("qrc:") ? ':' + QUrl(text).path().replace("//", "/") : text;
}

QStringList configuredPictures() {
    const Configuration c = makeConfiguration();
    QStringList texts = c.visibilityImagesPath + c.buttonBackgroundImagesPath +
                        c.toolTabImagesPath + c.zoneLockerImagesPath + c.moveLockerImagesPath +
                        c.selectButtonsPath + c.deformButtonsPath + c.rotationButtonPath;
    texts << c.logoPath << c.adjustViewButtonPath << c.closeWindowButtonPath
          << QLatin1StringView(ShellLook::kWindowIcon);
    for (const Pattern& pattern : c.testPatterns)
        texts << pattern.imagePath;
    QStringList paths;
    for (const QString& text : texts)
        if (text.startsWith(':') || text.startsWith("qrc:")) // some buttons have a label instead
            paths << resourcePath(text);
    return paths;
}

QString styleSheet() {
    QFile file(QLatin1StringView(ShellLook::kStyleSheetPath));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QStringList styledPictures() {
    QString styles = styleSheet();
    for (const char* style :
         {ShellLook::kTabOff, ShellLook::kTabOn, ShellLook::kLeftCapOff, ShellLook::kLeftCapOn,
          ShellLook::kRightCapOff, ShellLook::kRightCapOn, ShellLook::kConnectButtonOn,
          PagesLook::kPageSpinBox})
        styles += QLatin1StringView(style);
    static const QRegularExpression url("url\\('?([^')]+)'?\\)");
    QStringList paths;
    for (const QRegularExpressionMatch& match : url.globalMatch(styles))
        paths << match.captured(1);
    return paths;
}

QImage drawn(const QString& path, double scale) {
    QImageReader reader(path);
    reader.setScaledSize((QSizeF(reader.size()) * scale).toSize());
    return reader.read().convertToFormat(QImage::Format_ARGB32);
}

bool isUniform(const QImage& image) {
    QImage plain(image.size(), image.format());
    plain.fill(image.pixelColor(0, 0));
    return plain == image;
}

/// What of the picture is still there without colours: how bright it is on the application's
/// ground.
QImage brightness(const QString& path) {
    const QImage picture = drawn(path, 1);
    QImage onGround(picture.size(), QImage::Format_RGB32);
    onGround.fill(kBackground);
    QPainter(&onGround).drawImage(0, 0, picture);
    return onGround.convertToFormat(QImage::Format_Grayscale8);
}

} // namespace

class TestResources : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { initCompanionResources(); }

    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void everyNamedPictureCanBeDrawn() {
        const QStringList paths = configuredPictures() + styledPictures();
        QVERIFY(paths.size() > 60); // the lists were found at all
        for (const QString& path : QSet<QString>(paths.begin(), paths.end())) {
            const QImage image = drawn(path, 2); // missing, or the plugin of its format is
            QVERIFY2(!image.isNull() && !QIcon(path).pixmap(16, 16).isNull(), qPrintable(path));
            const bool fillsItsArea = path.contains("menu-center-off") ||
                                      path.contains("NoneBlack") || path.contains("mire_white");
            QVERIFY2(isUniform(image) == fillsItsArea, qPrintable(path));
        }
    }

    void styledPicturesComeTwiceAsLarge() {
        for (QString path : styledPictures()) {
            const QSize size = QImageReader(path).size();
            path.contains('.') ? path.replace('.', "@2x.") : path.append("@2x");
            QVERIFY2(QFile::exists(path), qPrintable(path));
            QCOMPARE(QImageReader(path).size(), size * 2);
        }
    }

    void sizesFitTheirPlaces() {
        const Configuration c = makeConfiguration();
        const auto size = [](const QString& text) {
            return QImageReader(resourcePath(text)).size();
        };
        for (const QString& path : c.selectButtonsPath + c.rotationButtonPath)
            QCOMPARE(size(path), c.warpToolButtonsSize);
        for (const QString& path : c.toolTabImagesPath)
            QCOMPARE(size(path), c.toolTabImagesSize);
        QCOMPARE(size(":/img/menu-center-on.svg"), c.menuTabSize);
        QCOMPARE(size(":/img/menu-left-on.svg"),
                 QSize(ShellLook::kTabCapWidth, c.menuTabSize.height()));
        QCOMPARE(size(":/img/connect.svg"), ShellLook::kConnectButtonSize);
        // The logo stands above the version between the banner's margins, twice: the layout's and
        // its own.
        const int margins = 4 * ShellLook::kBannerMargin;
        const int version = ShellLook::kVersionFontPoints + 2 * ShellLook::kBannerMargin;
        QVERIFY(size(c.logoPath).height() + version + margins <= ShellLook::kBannerHeight);
        const QSize thumbnail(c.patternButtonSize.width(),
                              c.patternButtonSize.height() - PagesLook::kPatternTextHeight);
        for (const Pattern& pattern : c.testPatterns)
            QCOMPARE(size(pattern.imagePath), thumbnail * 8); // no distortion on the button
    }

    void nothingIsCutOffAtTheEdge() {
        QDirIterator files(":/img");
        while (files.hasNext()) {
            const QString path = files.next();
            if (path.contains("/menu-") || path.contains("/button-") ||
                path.contains(QRegularExpression("/arrow-.*-off")))
                continue; // backgrounds reach the edge
            const QImage image = drawn(path, 4);
            const int right = image.width() - 1, bottom = image.height() - 1;
            for (const QRect edge : {QRect(0, 0, right, 1), QRect(0, bottom, right + 1, 1),
                                     QRect(0, 0, 1, bottom), QRect(right, 0, 1, bottom)}) {
                const QImage pixels = image.copy(edge);
                QVERIFY2(isUniform(pixels) && pixels.pixel(0, 0) == 0, qPrintable(path));
            }
        }
    }

    void statesDifferWithoutColours() {
        constexpr int kVisible = 40; // of 255
        QDirIterator files(":/img", {"*-off.svg"});
        QVERIFY(files.hasNext());
        while (files.hasNext()) {
            const QString off = files.next();
            const QImage before = brightness(off);
            const QImage after = brightness(QString(off).replace("-off", "-on"));
            QCOMPARE(after.size(), before.size());
            int changed = 0;
            for (int y = 0; y < before.height(); ++y) {
                for (int x = 0; x < before.width(); ++x)
                    changed +=
                        qAbs(qGray(before.pixel(x, y)) - qGray(after.pixel(x, y))) > kVisible;
            }
            QVERIFY2(changed * 100 >= before.width() * before.height() * 3, qPrintable(off));
        }
    }

    void colourBarsHaveTheirLevels() {
        const QImage across(":/patterns/mire_smpte_hor_color_bar.png");
        const QImage down(":/patterns/mire_smpte_ver_color_bar.png");
        // along the bars and across them, in parts of the picture
        const QList<std::tuple<double, double, QRgb>> levels = {
            {0.06, 0.3, qRgb(102, 102, 102)}, {0.18, 0.3, qRgb(191, 191, 191)},
            {0.28, 0.3, qRgb(191, 191, 0)},   {0.39, 0.3, qRgb(0, 191, 191)},
            {0.50, 0.3, qRgb(0, 191, 0)},     {0.60, 0.3, qRgb(191, 0, 191)},
            {0.71, 0.3, qRgb(191, 0, 0)},     {0.82, 0.3, qRgb(0, 0, 191)},
            {0.06, 0.62, qRgb(0, 255, 255)},  {0.94, 0.62, qRgb(0, 0, 255)},
            {0.06, 0.70, qRgb(255, 255, 0)},  {0.94, 0.70, qRgb(255, 0, 0)},
            {0.06, 0.9, qRgb(38, 38, 38)},    {0.20, 0.9, qRgb(0, 0, 0)},
            {0.39, 0.9, qRgb(255, 255, 255)}, {0.679, 0.9, qRgb(5, 5, 5)},
            {0.750, 0.9, qRgb(10, 10, 10)},   {0.714, 0.9, qRgb(0, 0, 0)},
        };
        for (const auto& [along, aside, color] : levels) {
            const QPointF place(along * across.width(), aside * across.height());
            const QString where = QString("%1 %2").arg(along).arg(aside);
            QVERIFY2(across.pixel(place.toPoint()) == color, qPrintable(where));
            QVERIFY2(down.pixel(qRound(aside * down.width()), qRound(along * down.height())) ==
                         color,
                     qPrintable(where));
        }
    }

    void styleSheetIsUnderstood() {
        QWidget widget; // a rule that is not understood is a warning
        widget.setStyleSheet(styleSheet());
        widget.ensurePolished();
        QCOMPARE(widget.palette().color(QPalette::Window), kBackground);
    }
};

QTEST_MAIN(TestResources)
#include "tst_resources.moc"
