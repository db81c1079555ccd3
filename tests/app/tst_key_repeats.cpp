#include "app/KeyRepeatFilter.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

/// A key that is held, as a window system reports it that releases it between repetitions.
class TestKeyRepeats : public QObject {
    Q_OBJECT

private slots:
    void aHeldKeyPressesOnce() {
        KeyRepeatFilter filter(nullptr);
        qApp->installEventFilter(&filter);
        QPushButton button;
        QSignalSpy pressed(&button, &QPushButton::pressed);
        QLineEdit edit;
        const auto send = [](QWidget& to, QEvent::Type type, quint64 time) {
            QKeyEvent event(type, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "));
            event.setTimestamp(time);
            QApplication::sendEvent(&to, &event);
        };
        for (QWidget* to : {static_cast<QWidget*>(&button), static_cast<QWidget*>(&edit)}) {
            for (quint64 time = 1000; time < 1400; time += 40) {
                send(*to, QEvent::KeyPress, time);
                send(*to, QEvent::KeyRelease, time + 40);
            }
        }
        QCOMPARE(pressed.size(), 1);
        QCOMPARE(edit.text(), QString(10, QLatin1Char(' '))); // text repeats

        send(button, QEvent::KeyPress, 2000); // pressed anew
        send(button, QEvent::KeyRelease, 2050);
        send(button, QEvent::KeyPress, 2051);
        QCOMPARE(pressed.size(), 3);
    }
};

QTEST_MAIN(TestKeyRepeats)
#include "tst_key_repeats.moc"
