#include "tests/support/WindowRig.h"

#include "app/Content.h"
#include "app/InputGate.h"
#include "app/shell/EventDispatcher.h"
#include "network/events/AddMediaEvent.h"
#include "network/events/MediaDeformationModeEvent.h"
#include "warp/Item.h"

#include <QTest>

#include <algorithm>

using namespace NetworkCompanion;

namespace MeshpadTest {

WindowRig::WindowRig(const Timing& timing)
    : window(std::make_unique<GuiCompanion>(nullptr, timing)) {
    view = find<QQuickWidget>();
}

WindowRig::~WindowRig() {
    if (window) {
        window->onDisconnectFromServer();
        close();
    }
}

void WindowRig::show() {
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
}

void WindowRig::open() {
    QVERIFY(producer.listen(QHostAddress::LocalHost, kProducerPort));
    show();
    window->onConnectToServer(producer.host());
    QTRY_VERIFY(isReady());
    QTRY_COMPARE(producer.connectionCount(), 1);
}

bool WindowRig::isReady() const {
    return EventDispatcher::getInstance()->client().isConnected() && find<InputGate>()->isOpen();
}

void WindowRig::close() {
    find<Content>()->setPage(Companion::Page::Warp); // only a visible scene draws a last frame
    clear();
    window.reset();
}

void WindowRig::sendMedia(int dataIndex, int side, unsigned int cue) {
    producer.send(AddMediaEvent(MediaType::Image, cue, kMediaId, dataIndex, 1920, 1080, 0, 0.0,
                                "Media", false));
    producer.send(MediaDeformationModeEvent(LV_NTC_ElementType::Media,
                                            LV_NTC_DeformationType::Curve, cue, kMediaId, dataIndex,
                                            "Media", side, side, false));
}

void WindowRig::select(int dataIndex, int side) {
    const auto row = [&]() -> Item* {
        const auto items = window->findChildren<Item*>();
        const auto found = std::ranges::find(items, dataIndex, &Item::dataIndex);
        return found == items.end() ? nullptr : *found;
    };
    QTRY_VERIFY(row() != nullptr);
    row()->selected(row());
    QTRY_VERIFY(xyGrid() && xyGrid()->pointCount() == side * side);
    evaluate("getCurrentItem().itemDeformer.adjustView()");
}

} // namespace MeshpadTest
