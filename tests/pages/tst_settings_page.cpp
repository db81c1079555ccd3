#include "network/events/UpdateSettingsEvent.h"
#include "pages/SettingsPage.h"
#include "tests/support/GuardedTest.h"
#include "tests/support/WidgetRig.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>

using namespace MeshpadTest;
using NetworkCompanion::UpdateSettingsEvent;

namespace {

class SettingsRig : public WidgetRig<SettingsPage> {
public:
    QComboBox* combo(const QString& name) const {
        const auto combos = widget->findChildren<QComboBox*>();
        return *std::ranges::find(combos, name, &QComboBox::accessibleName);
    }

    int visibleChoices() const {
        int count = int(color->isVisible()) + int(shape->isVisible());
        for (const auto* label : widget->findChildren<QLabel*>())
            count += int(label->isVisible());
        return count;
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
        QCOMPARE(rig.visibleChoices(), 0);
        QTest::mouseClick(rig.box, Qt::LeftButton);
        QVERIFY(rig.gets(UpdateSettingsEvent("#0000ff", 1)));
        QCOMPARE(rig.visibleChoices(), 4);
        QTest::keyClick(rig.shape, Qt::Key_End);
        QVERIFY(rig.gets(UpdateSettingsEvent("#0000ff", 4)));
        rig.color->setFocus();
        QTest::keyClicks(rig.color, "Dark b"); // matches no other colour on the way
        QVERIFY(rig.gets(UpdateSettingsEvent("#000080", 4)));
        QTest::mouseClick(rig.box, Qt::LeftButton);
        QVERIFY(rig.gets(UpdateSettingsEvent("", 0)));
        QCOMPARE(rig.visibleChoices(), 0);
    }

    void largeFontCutsNothingOff() {
        const QFont usual = QApplication::font();
        const auto restore = qScopeGuard([usual] { QApplication::setFont(usual); });
        QFont large = usual;
        large.setPointSizeF(usual.pointSizeF() * 1.5);
        QApplication::setFont(large);
        const SettingsRig rig;
        rig.box->setChecked(true);
        for (const QWidget* control : QWidgetList{rig.box, rig.color, rig.shape})
            QTRY_VERIFY(control->width() >= control->sizeHint().width());
    }
};

QTEST_MAIN(TestSettingsPage)
#include "tst_settings_page.moc"
