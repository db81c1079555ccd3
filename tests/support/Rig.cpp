#include "tests/support/Rig.h"

#include "app/shell/EventDispatcher.h"
#include "app/shell/EventListener.h"
#include "app/shell/EventSubscription.h"
#include "app/shell/ShellLook.h"
#include "network/events/GetResourcesIdEvent.h"
#include "resources/CompanionResources.h"

#include <QApplication>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

namespace MeshpadTest {

using namespace NetworkCompanion;

Rig::Rig() {
    static const QTemporaryDir settings;
    QVERIFY(settings.isValid());
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    initCompanionResources();
    QFile styleSheet{QLatin1StringView(ShellLook::kStyleSheetPath)};
    QVERIFY(styleSheet.open(QIODevice::ReadOnly));
    if (qApp->styleSheet().isEmpty())
        qApp->setStyleSheet(QString::fromUtf8(styleSheet.readAll()));
}

Rig::~Rig() {
    EventDispatcher::getInstance()->client().disconnectFromServer();
}

void Rig::connect() {
    QVERIFY(producer.listen());
    QVERIFY(
        EventDispatcher::getInstance()->client().connectToServer(producer.host(), producer.port()));
    QTRY_COMPARE(producer.connectionCount(), 1);
}

void Rig::settle() {
    QCoreApplication::processEvents();
    QVERIFY(producer.receivesAllOf(EventDispatcher::getInstance()->client()));
}

void Rig::waitForDelivery() {
    struct Marker : EventListener {
        void receive(Event*) override { hasArrived = true; }
        bool hasArrived = false;
    } marker;
    constexpr LV_NTC_EventType types[]{LV_NTC_EventType::GetResourcesId};
    const EventSubscription subscription(&marker, types);
    producer.send(GetResourcesIdEvent());
    QTRY_VERIFY(marker.hasArrived);
}

bool Rig::gets(const std::vector<const Event*>& expected) {
    const bool isEqual =
        producer.receivesAllOf(EventDispatcher::getInstance()->client()) &&
        std::ranges::equal(producer.events(), expected, [](const auto& got, const Event* wanted) {
            return got && *got == *wanted;
        });
    if (!isEqual) {
        QDebug line = qWarning().nospace();
        line << "The Producer received\n" << qPrintable(producer.lines().join('\n')) << "\nnot";
        for (const Event* event : expected)
            line << '\n' << *event;
    }
    producer.forget();
    return isEqual;
}

} // namespace MeshpadTest
