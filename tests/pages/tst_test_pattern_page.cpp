#include "network/events/MireEvent.h"
#include "pages/TestPatternButton.h"
#include "pages/TestPatternPage.h"
#include "tests/support/GuardedTest.h"
#include "tests/support/ProtocolBytes.h"
#include "tests/support/WidgetRig.h"

using namespace MeshpadTest;
using namespace NetworkCompanion;

namespace {

constexpr QRgb kIdle = 0xff323232;
constexpr QRgb kActive = 0xff0096ff;

class PatternTest : public WidgetRig<TestPatternPage> {
public:
    TestPatternButton* button(const QString& name) const {
        for (auto* candidate : widget->findChildren<TestPatternButton*>())
            if (candidate->accessibleName() == name)
                return candidate;
        qFatal("no such pattern");
    }
    /// What the operator sees of the frame, beside the name.
    QRgb frameOf(const QString& name) const { return button(name)->grab().toImage().pixel(6, 14); }
    void press(const QString& name) const { QTest::mouseClick(button(name), Qt::LeftButton); }
    QStringList marked() const {
        QStringList names;
        for (const auto* candidate : widget->findChildren<TestPatternButton*>())
            if (frameOf(candidate->accessibleName()) == kActive)
                names << candidate->accessibleName();
        return names;
    }
};

QByteArray mireBytes(int code) {
    return withLength(frame(2, int32(code) + int32(0)));
}

} // namespace

/// The page of test patterns between an operator and a Producer.
class TestTestPatternPage : public GuardedTest {
    Q_OBJECT

private slots:
    void aPressIsSentOnceAndMarkedAtOnce() {
        const PatternTest test;
        QCOMPARE(test.marked(), QStringList{"None"});
        test.press("None");
        test.press("White");
        QCOMPARE(test.marked(), QStringList{"White"}); // before anything can have come back
        QCOMPARE(test.frameOf("None"), kIdle);
        test.press("White");
        auto* logo = test.button("LV Logo");
        const auto border = [logo] { return logo->grab().toImage().pixel(110, 0); };
        QCOMPARE(border(), kIdle);
        QTest::mouseMove(logo);
        QTRY_VERIFY(border() != kIdle);
        const QRgb hovered = border();
        logo->setDown(true); // as under a finger
        QVERIFY(border() != hovered);
        logo->setDown(false);
        const QImage idle = test.button("Tile")->grab().toImage();
        test.button("Tile")->setFocus();
        QVERIFY(test.button("Tile")->grab().toImage() != idle);
        QTest::keyClick(test.button("Tile"), Qt::Key_Space);
        QCOMPARE(test.marked(), QStringList{"Tile"});
        test.press("None");
        const QByteArray expected = mireBytes(11) + mireBytes(4) + mireBytes(0);
        QTRY_COMPARE(test.producer.bytes(), expected);
    }

    void anAnnouncedPatternIsMarkedAndNotSentBack() {
        PatternTest test;
        test.producer.send(MireEvent(7, LV_NTC_PictureType::Osd));
        QTRY_COMPARE(test.marked(), QStringList{"OSD"});
        for (const int unknown : {12, -1, 0x7fffffff, -0x7fffffff - 1}) {
            MireEvent hostile(0, static_cast<LV_NTC_PictureType>(unknown));
            test.widget->receive(&hostile);
        }
        QCOMPARE(test.marked(), QStringList{"OSD"});
        test.producer.send(MireEvent(0, LV_NTC_PictureType::Small));
        QTRY_COMPARE(test.marked(), QStringList{"Small"});
        test.press("Small");
        test.press("None");
        QTRY_COMPARE(test.producer.bytes(), mireBytes(0));
    }

    void aPictureFillsItsFrameAndTheGridFitsTheSmallestWindow() {
        const PatternTest test;
        const QImage white = test.button("White")->grab().toImage();
        QCOMPARE(white.pixel(0, 29), 0xffffffff);
        QCOMPARE(white.pixel(219, 159), 0xffffffff);
        QVERIFY(test.widget->minimumSizeHint().width() <= 1280);
        QVERIFY(test.widget->minimumSizeHint().height() <= 720 - 110);
        QCOMPARE(test.button("Tile")->x(), test.button("None")->x());
        QVERIFY(test.button("Tile")->y() > test.button("Vertical")->y());
    }
};

QTEST_MAIN(TestTestPatternPage)
#include "tst_test_pattern_page.moc"
