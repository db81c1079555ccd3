// The pictures and the style sheet that the program is compiled with.

#include "app/shell/Configuration.h"
#include "app/shell/ShellLook.h"
#include "pages/PagesLook.h"
#include "resources/CompanionResources.h"

#include <QFile>
#include <QIcon>
#include <QImageReader>
#include <QRegularExpression>
#include <QTest>
#include <QWidget>

namespace {

QString applicationStyle() {
    QFile file(QLatin1StringView(ShellLook::kStyleSheetPath));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

class TestResources : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { initCompanionResources(); }
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void configuredPictureCanBeDrawn_data() {
        QTest::addColumn<QString>("path");
        const Configuration c = makeConfiguration();
        QStringList paths = c.visibilityImagesPath + c.buttonBackgroundImagesPath +
                            c.toolTabImagesPath + c.zoneLockerImagesPath + c.moveLockerImagesPath +
                            c.selectButtonsPath + c.deformButtonsPath + c.rotationButtonPath;
        paths << c.logoPath << c.adjustViewButtonPath << c.closeWindowButtonPath;
        for (const Pattern& pattern : c.testPatterns)
            paths << pattern.imagePath;
        for (const QString& path : paths.filter(":/")) // the others are labels
            QTest::newRow(qPrintable(path)) << QString(path).replace("qrc:///", ":/");
        QTest::newRow("window icon") << QString(ShellLook::kWindowIcon);
    }
    void configuredPictureCanBeDrawn() {
        QFETCH(QString, path);
        QVERIFY(!QIcon(path).pixmap(16, 16).isNull());
    }

    void styledPictureExistsInBothResolutions_data() {
        QTest::addColumn<QString>("path");
        const QString styles = applicationStyle() + ShellLook::kTabOff + ShellLook::kTabOn +
                               ShellLook::kLeftCapOff + ShellLook::kLeftCapOn +
                               ShellLook::kRightCapOff + ShellLook::kRightCapOn +
                               ShellLook::kConnectButtonOn + PagesLook::kPageSpinBox;
        static const QRegularExpression url("url\\('?([^')]+)'?\\)");
        for (const QRegularExpressionMatch& match : url.globalMatch(styles))
            QTest::addRow("%s", qPrintable(match.captured(1))) << match.captured(1);
    }
    void styledPictureExistsInBothResolutions() {
        QFETCH(QString, path);
        const QSize size = QImageReader(path).size();
        path.contains('.') ? path.replace('.', "@2x.") : path.append("@2x");
        QVERIFY(!QImageReader(path).read().isNull());
        QCOMPARE(QImageReader(path).size(), size * 2);
    }

    void styleSheetIsValid() {
        QWidget widget; // an invalid rule causes a warning
        widget.setStyleSheet(applicationStyle());
        widget.ensurePolished();
        QCOMPARE(widget.palette().color(QPalette::Window), QColor(0x1e, 0x1e, 0x1e));
    }
};

QTEST_MAIN(TestResources)
#include "tst_resources.moc"
