#include "network/CompanionClient.h"
#include "network/events/EventTable.h"
#include "resources/CompanionResources.h"
#include "tests/support/GuardedTest.h"
#include "tools/demo_producer/ProducerWindow.h"
#include "tools/demo_producer/ShowCatalog.h"

#include <QTest>

#include <memory>

using namespace NetworkCompanion;

namespace {

constexpr ItemKey kFront{LV_NTC_ElementType::Screen, 0, 0};
constexpr ItemKey kWall{LV_NTC_ElementType::Screen, 1, 0};

/// The middle of each of the three outputs, and a position in the third that the wall behind fills.
constexpr QPoint kFrontMiddle{222, 182}, kWallMiddle{640, 182}, kSilosMiddle{1058, 182};

/// The outputs, without what is written above and below them.
const QRect kFrontOutput(20, 68, 404, 227), kOthers(439, 68, 822, 227);

} // namespace

class WindowTest : public MeshpadTest::GuardedTest {
    Q_OBJECT

private slots:
    void initTestCase() { initCompanionResources(); }
    void init() {
        GuardedTest::init();
        session_ = std::make_unique<ProducerSession>(
            std::vector{ShowCatalog::harbour(), ShowCatalog::winterGarden()}, nullptr);
        window_ = std::make_unique<ProducerWindow>(*session_, "Test", QString(), true, false);
        window_->show();
        QVERIFY(QTest::qWaitForWindowExposed(window_.get()));
    }
    void cleanup() {
        window_.reset();
        session_.reset();
        GuardedTest::cleanup();
    }

    void onlyWhatIsBentLooksDifferent() {
        const QImage before = picture();
        QCOMPARE(picture(), before);
        QVERIFY(session_->movePoint(kFront, true, 24, {300, -200}));
        const QImage bent = picture();
        QVERIFY(bent.copy(kFrontOutput) != before.copy(kFrontOutput));
        QCOMPARE(bent.copy(kOthers), before.copy(kOthers));
        QVERIFY(session_->setMode(kFront, LV_NTC_ModeType::Simple));
        // Undeformed, the picture reaches the corner of the output.
        QVERIFY(qGray(picture().pixel(kFrontOutput.topLeft() + QPoint(3, 3))) > 10);
        QCOMPARE(qGray(bent.pixel(kFrontOutput.topLeft() + QPoint(3, 3))), 0);
    }

    void blindsAreBlackAndPatternsCoverEveryOutput() {
        session_->setPattern(LV_NTC_PictureType::White);
        QImage white = picture();
        for (const QPoint& middle : {kFrontMiddle, kWallMiddle, kSilosMiddle})
            QCOMPARE(white.pixel(middle), qRgb(255, 255, 255));
        session_->setBlinded(kWall, true);
        session_->setBlinded({LV_NTC_ElementType::ScreenPart, 2, 1}, true);
        const QImage blinded = picture();
        QCOMPARE(blinded.pixel(kFrontMiddle), qRgb(255, 255, 255));
        QCOMPARE(blinded.pixel(kWallMiddle), qRgb(0, 0, 0));
        QCOMPARE(blinded.pixel(kSilosMiddle), qRgb(0, 0, 0)); // the part, not its neighbour
        QCOMPARE(blinded.pixel(kSilosMiddle + QPoint(130, 0)), qRgb(255, 255, 255));
        QList<QImage> seen;
        for (int pattern = 0; pattern <= int(LV_NTC_PictureType::White); ++pattern) {
            session_->setPattern(LV_NTC_PictureType(pattern));
            seen.append(picture().copy(kFrontOutput));
            for (qsizetype other = 0; other < seen.size() - 1; ++other)
                QVERIFY2(seen[other] != seen.last(), qPrintable(QString::number(pattern)));
        }
    }

    void aCompanionSeesItsPointsAndItsQuickKey() {
        QVERIFY(session_->listen(QHostAddress::LocalHost, 0));
        session_->setPattern(LV_NTC_PictureType::White);
        CompanionClient client(nullptr);
        QVERIFY(client.connectToServer("127.0.0.1", session_->port()));
        UpdateSettingsEvent settings("#ff0000", 4);
        ItemDataEvent request(1);
        QVERIFY(client.sendEvent(settings) && client.sendEvent(request));
        QTRY_VERIFY(!session_->companions().empty());
        QTRY_COMPARE(session_->companions().begin()->second.editing, kFront);
        const auto redPixels = [this] {
            const QImage image = picture().copy(kFrontOutput);
            int count = 0;
            for (int y = 0; y < image.height(); ++y)
                for (int x = 0; x < image.width(); ++x)
                    count += qRed(image.pixel(x, y)) > 200 && qGreen(image.pixel(x, y)) < 60;
            return count;
        };
        const int unselected = redPixels();
        QVERIFY(unselected > 49 * 20); // 49 points
        ScreenMovePointEvent move(0, 1, "", 24, 0, 0, 0, true, true);
        QVERIFY(client.sendEvent(move));
        QTRY_VERIFY(session_->show().find(kFront)->warp.xy[24].selected);
        QVERIFY(redPixels() > unselected); // the selected one is larger
        settings = UpdateSettingsEvent("", 0);
        QVERIFY(client.sendEvent(settings));
        QTRY_COMPARE(redPixels(), 0);

        const QImage before = picture().copy(kOthers);
        ExecuteQuickKeyEvent key(1);
        QVERIFY(client.sendEvent(key));
        QTRY_VERIFY(picture().copy(kOthers) != before);
        QTRY_COMPARE(picture().copy(kOthers), before); // and fades
    }

    void keysOfTheWindow() {
        QTest::keyClick(window_.get(), Qt::Key_P);
        QCOMPARE(session_->show().pattern, LV_NTC_PictureType::Small);
        QTest::keyClick(window_.get(), Qt::Key_B);
        QVERIFY(session_->show().find(kFront)->blinded && session_->show().find(kWall)->blinded);
        QTest::keyClick(window_.get(), Qt::Key_B);
        QVERIFY(!session_->show().find(kWall)->blinded);
        const QImage before = picture();
        QTest::keyClick(window_.get(), Qt::Key_M);
        QVERIFY(picture() != before);
        QTest::keyClick(window_.get(), Qt::Key_N);
        QCOMPARE(session_->show().title, "Winter Garden");
    }

private:
    [[nodiscard]] QImage picture() const { return window_->grab().toImage(); }

    std::unique_ptr<ProducerSession> session_;
    std::unique_ptr<ProducerWindow> window_;
};

QTEST_MAIN(WindowTest)
#include "tst_window.moc"
