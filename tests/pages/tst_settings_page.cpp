#include "pages/SettingsPage.h"
#include "tests/support/GuardedTest.h"
#include "tests/support/ProtocolBytes.h"
#include "tests/support/WidgetRig.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>

using namespace MeshpadTest;

namespace {

class SettingsTest : public WidgetRig<SettingsPage> {
public:
    QCheckBox* box() const { return widget->findChild<QCheckBox*>(); }
    QComboBox* combo(const QString& name) const {
        for (auto* candidate : widget->findChildren<QComboBox*>())
            if (candidate->accessibleName() == name)
                return candidate;
        qFatal("no such combo box");
    }
    QComboBox* color() const { return combo("Points color"); }
    QComboBox* shape() const { return combo("Points shape"); }
    int visibleControls() const {
        int count = 0;
        for (const auto* label : widget->findChildren<QLabel*>())
            count += label->isVisible() ? 1 : 0;
        return count + (color()->isVisible() ? 1 : 0) + (shape()->isVisible() ? 1 : 0);
    }
};

QByteArray settingsBytes(const char* color, int shape) {
    return withLength(frame(27, text(color, 8) + int32(shape)));
}

} // namespace

/// The settings page between an operator and a Producer.
class TestSettingsPage : public GuardedTest {
    Q_OBJECT

private slots:
    void everyChangeIsSentAtOnce() {
        const SettingsTest test;
        QCOMPARE(test.visibleControls(), 0);
        QTest::mouseClick(test.box(), Qt::LeftButton);
        QCOMPARE(test.visibleControls(), 4);
        test.shape()->setFocus();
        QTest::keyClick(test.shape(), Qt::Key_End);
        test.color()->setFocus();
        QTest::keyClicks(test.color(), "Dark b");
        QTest::mouseClick(test.box(), Qt::LeftButton);
        QCOMPARE(test.visibleControls(), 0);

        // Typing passes "Dark blue" on its way to nothing else: "Blue" comes first in the list.
        const QByteArray expected = settingsBytes("#0000ff", 1) + settingsBytes("#0000ff", 4) +
                                    settingsBytes("#000080", 4) + settingsBytes("", 0);
        QTRY_COMPARE(test.producer.bytes(), expected);
    }

    void aLargerFontCutsNothingOff() {
        const QFont usual = QApplication::font();
        QFont larger = usual;
        larger.setPointSizeF(usual.pointSizeF() * 1.5);
        QApplication::setFont(larger);
        const auto restore = qScopeGuard([usual] { QApplication::setFont(usual); });
        const SettingsTest test;
        test.box()->setChecked(true);
        for (const QWidget* control :
             {static_cast<QWidget*>(test.box()), static_cast<QWidget*>(test.color()),
              static_cast<QWidget*>(test.shape())})
            QTRY_VERIFY(control->width() >= control->sizeHint().width());
    }
};

QTEST_MAIN(TestSettingsPage)
#include "tst_settings_page.moc"
