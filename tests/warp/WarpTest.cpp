#include "tests/warp/WarpTest.h"

#include "app/shell/EventDispatcher.h"
#include "network/events/MsgEvent.h"

#include <QDebug>
#include <QTest>

#include <algorithm>

using namespace NetworkCompanion;

bool WarpTest::connectProducer() {
    messages_.emplace();
    producer_.emplace();
    return producer_->listen() &&
           EventDispatcher::getInstance()->client().connectToServer(producer_->host(),
                                                                    producer_->port()) &&
           QTest::qWaitFor([this] { return producer_->connectionCount() == 1; });
}

void WarpTest::disconnectProducer() {
    EventDispatcher::getInstance()->client().disconnectFromServer();
    producer_.reset();
    messages_.reset();
}

bool WarpTest::gets(std::vector<const Event*> expected) {
    MsgEvent marker("nothing more");
    expected.push_back(&marker);
    EventDispatcher::getInstance()->client().sendEvent(marker);
    const auto isMarker = [&](const auto& event) { return event && *event == marker; };
    const auto& events = producer_->events();
    static_cast<void>(
        QTest::qWaitFor([&] { return std::any_of(events.begin(), events.end(), isMarker); }));

    const bool isEqual =
        std::equal(events.begin(), events.end(), expected.begin(), expected.end(),
                   [](const auto& got, const Event* wanted) { return got && *got == *wanted; });
    if (!isEqual) {
        QDebug line = qWarning().nospace();
        line << "The Producer got\n" << qPrintable(producer_->lines().join('\n')) << "\nnot";
        for (const Event* event : expected)
            line << '\n' << *event;
    }
    producer_->forget();
    return isEqual;
}
