#include "network/events/MireEvent.h"
#include "pages/TestPatternButton.h"
#include "pages/TestPatternPage.h"
#include "tests/support/GuardedTest.h"
#include "tests/support/WidgetRig.h"

using namespace MeshpadTest;
using namespace NetworkCompanion;

namespace {

constexpr QRgb kActive = 0xff0096ff;

class PatternRig : public WidgetRig<TestPatternPage> {
public:
    TestPatternButton* button(const QString& name) const {
        const auto buttons = widget->findChildren<TestPatternButton*>();
        return *std::ranges::find(buttons, name, &TestPatternButton::accessibleName);
    }
    void press(const QString& name) const { QTest::mouseClick(button(name), Qt::LeftButton); }
    /// The names on a frame in the active colour.
    QStringList active() const {
        QStringList names;
        for (auto* candidate : widget->findChildren<TestPatternButton*>())
            if (candidate->grab().toImage().pixel(6, 14) == kActive)
                names << candidate->accessibleName();
        return names;
    }
};

} // namespace

/// The page of test patterns, connected to a Producer.
class TestTestPatternPage : public GuardedTest {
    Q_OBJECT

private slots:
    void sendsAChosenPatternOnce() {
        PatternRig rig;
        QCOMPARE(rig.active(), QStringList{"None"});
        rig.press("None");
        QVERIFY(rig.getsNothing());
        rig.press("White");
        QCOMPARE(rig.active(), QStringList{"White"}); // without waiting for the Producer
        rig.press("White");
        QVERIFY(rig.gets(MireEvent(0, LV_NTC_PictureType::White)));
        QTest::keyClick(rig.button("Tile"), Qt::Key_Space);
        QVERIFY(rig.gets(MireEvent(0, LV_NTC_PictureType::Tile)));
    }

    void marksAReportedPatternWithoutSending() {
        PatternRig rig;
        rig.producer.send(MireEvent(7, LV_NTC_PictureType::Osd));
        QTRY_COMPARE(rig.active(), QStringList{"OSD"});
        for (const int unknown : {12, -1, 0x7fffffff, -0x7fffffff - 1})
            rig.producer.send(MireEvent(0, static_cast<LV_NTC_PictureType>(unknown)));
        rig.settle();
        QCOMPARE(rig.active(), QStringList{"OSD"});
        rig.producer.send(MireEvent(0, LV_NTC_PictureType{})); // none
        QTRY_COMPARE(rig.active(), QStringList{"None"});
        rig.press("None");
        QVERIFY(rig.getsNothing());
    }
};

QTEST_MAIN(TestTestPatternPage)
#include "tst_test_pattern_page.moc"
