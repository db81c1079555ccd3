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

class TestResources : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        initCompanionResources();
        QFile file(QLatin1StringView(ShellLook::kStyleSheetPath));
        QVERIFY(file.open(QIODevice::ReadOnly));
        styleSheet_ = QString::fromUtf8(file.readAll());
    }
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void drawsPicture_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("isStyled"); // style sheets choose the resolution by the file's name
        const Configuration c = makeConfiguration();
        QStringList paths = c.visibilityImagesPath + c.buttonBackgroundImagesPath +
                            c.toolTabImagesPath + c.zoneLockerImagesPath + c.moveLockerImagesPath +
                            c.selectButtonsPath + c.deformButtonsPath + c.rotationButtonPath;
        paths << c.logoPath << c.adjustViewButtonPath << c.closeWindowButtonPath
              << ShellLook::kWindowIcon;
        for (const Pattern& pattern : c.testPatterns)
            paths << pattern.imagePath;
        for (const QString& path : paths.filter(":/")) // the others are labels
            QTest::newRow(qPrintable(path)) << QString(path).replace("qrc:///", ":/") << false;
        const QString styles = styleSheet_ + ShellLook::kTabOff + ShellLook::kTabOn +
                               ShellLook::kLeftCapOff + ShellLook::kLeftCapOn +
                               ShellLook::kRightCapOff + ShellLook::kRightCapOn +
                               ShellLook::kConnectButtonOn + PagesLook::kPageSpinBox;
        static const QRegularExpression url("url\\('?([^')]+)'?\\)");
        for (const QRegularExpressionMatch& match : url.globalMatch(styles))
            QTest::addRow("%s", qPrintable(match.captured(1))) << match.captured(1) << true;
    }
    void drawsPicture() {
        QFETCH(QString, path);
        QVERIFY(!QIcon(path).pixmap(16, 16).isNull());
        QFETCH(bool, isStyled);
        const QSize size = QImageReader(path).size();
        path.contains('.') ? path.replace('.', "@2x.") : path.append("@2x");
        if (isStyled)
            QCOMPARE(QImageReader(path).read().size(), size * 2);
    }

    void parsesStyleSheet() {
        QWidget widget; // an invalid rule causes a warning
        widget.setStyleSheet(styleSheet_);
        widget.ensurePolished();
        QCOMPARE(widget.palette().color(QPalette::Window), QColor(0x1e, 0x1e, 0x1e));
    }

private:
    QString styleSheet_;
};

QTEST_MAIN(TestResources)
#include "tst_resources.moc"
