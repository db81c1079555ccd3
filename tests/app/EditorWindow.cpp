#include "tests/app/EditorWindow.h"

#include "app/shell/EventDispatcher.h"
#include "app/shell/UpdateProducer.h"
#include "network/events/AddMediaEvent.h"
#include "network/events/MediaDeformationModeEvent.h"
#include "network/events/MsgEvent.h"
#include "warp/Item.h"

#include <QQmlContext>
#include <QQmlExpression>
#include <QQuickItem>
#include <QTest>

using namespace NetworkCompanion;

namespace MeshpadTest {

EditorWindow::EditorWindow() {
    UpdateProducer::tickPeriod = std::chrono::milliseconds(5);
    window = std::make_unique<GuiCompanion>(nullptr);
    view = window->findChild<QQuickWidget*>();
}

EditorWindow::~EditorWindow() {
    window->onDisconnectFromServer();
    if (producer.acceptedCount() > 0)
        WindowUnderTest::clear(view);
    window.reset();
    UpdateProducer::tickPeriod = UpdateProducer::kTickPeriod;
}

void EditorWindow::open() {
    constexpr quint16 kProducerPort = 62330;
    QVERIFY(producer.listen(QHostAddress::LocalHost, kProducerPort));
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    window->onConnectToServer(producer.host());
    QTRY_COMPARE(producer.connectionCount(), 1);
}

void EditorWindow::sendMedia(int dataIndex, int side, unsigned int cue) {
    producer.send(AddMediaEvent(MediaType::Image, cue, kMediaId, dataIndex, 1920, 1080, 0, 0.0,
                                "Media", false));
    producer.send(MediaDeformationModeEvent(LV_NTC_ElementType::Media,
                                            LV_NTC_DeformationType::Curve, cue, kMediaId, dataIndex,
                                            "Media", side, side, false));
}

void EditorWindow::select(int dataIndex, int side) {
    const auto row = [&]() -> Item* {
        for (Item* item : window->findChildren<Item*>())
            if (item->dataIndex() == dataIndex)
                return item;
        return nullptr;
    };
    QTRY_VERIFY(row() != nullptr);
    row()->selected(row());
    const QString points =
        "(getCurrentItem() ? getCurrentItem().deformerGrids[0].pointsArray.length : 0)";
    QTRY_COMPARE(number(points), side * side);
    evaluate("getCurrentItem().itemDeformer.adjustView()");
}

void EditorWindow::settle() {
    static int marks = 0;
    MsgEvent mark(QByteArray::number(++marks).constData());
    EventDispatcher::getInstance()->client().sendEvent(mark);
    const auto isMarked = [&] {
        const auto texts = producer.eventsOf<MsgEvent>();
        return !texts.empty() && *texts.back() == mark;
    };
    QTRY_VERIFY(isMarked());
}

QVariant EditorWindow::evaluate(const QString& expression) const {
    QQuickItem* root = view->rootObject();
    QQmlExpression evaluated(qmlContext(root), root, expression);
    const QVariant result = evaluated.evaluate();
    if (evaluated.hasError())
        QTest::qFail(qPrintable(evaluated.error().toString()), __FILE__, __LINE__);
    return result;
}

} // namespace MeshpadTest
