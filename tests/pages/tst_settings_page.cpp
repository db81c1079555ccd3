#include "network/events/UpdateSettingsEvent.h"
#include "pages/SettingsPage.h"
#include "tests/support/GuardedTest.h"
#include "tests/support/WidgetRig.h"

#include <QCheckBox>
#include <QComboBox>

using namespace MeshpadTest;
using NetworkCompanion::UpdateSettingsEvent;

namespace {

class SettingsRig : public WidgetRig<SettingsPage> {
public:
    QComboBox* combo(const QString& name) const {
        const auto combos = widget->findChildren<QComboBox*>();
        return *std::ranges::find(combos, name, &QComboBox::accessibleName);
    }

    QCheckBox* box = widget->findChild<QCheckBox*>();
    QComboBox* color = combo("Points color");
    QComboBox* shape = combo("Points shape");
};

} // namespace

/// The settings page, connected to a Producer.
class TestSettingsPage : public GuardedTest {
    Q_OBJECT

private slots:
    void sendsEveryChange() {
        SettingsRig rig;
        QVERIFY(rig.getsNothing());
        QVERIFY(!rig.color->isVisible() && !rig.shape->isVisible());
        QTest::mouseClick(rig.box, Qt::LeftButton);
        QVERIFY(rig.gets(UpdateSettingsEvent("#0000ff", 1)));
        const QSize size = rig.box->parentWidget()->size();
        QVERIFY(size.width() <= 300 && size.height() <= 250);
        const QPointF centre = rig.shape->rect().center();
        QWheelEvent wheel(centre, rig.shape->mapToGlobal(centre), {}, {0, -120}, Qt::NoButton, {},
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(rig.shape, &wheel); // without the focus
        QVERIFY(rig.getsNothing());
        QTest::keyClick(rig.shape, Qt::Key_End);
        QVERIFY(rig.gets(UpdateSettingsEvent("#0000ff", 4)));
        rig.color->setFocus();
        QTest::keyClicks(rig.color, "Dark b"); // matches no other colour on the way
        QVERIFY(rig.gets(UpdateSettingsEvent("#000080", 4)));
        QTest::mouseClick(rig.box, Qt::LeftButton);
        QVERIFY(rig.gets(UpdateSettingsEvent("", 0)));
        QVERIFY(!rig.color->isVisible() && !rig.shape->isVisible());
    }
};

QTEST_MAIN(TestSettingsPage)
#include "tst_settings_page.moc"
