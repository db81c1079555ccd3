#include "app/shell/EventDispatcher.h"
#include "app/shell/EventListener.h"
#include "app/shell/EventSubscription.h"
#include "network/events/AddMediaEvent.h"
#include "network/events/BlindEvent.h"
#include "network/events/MediaBlindEvent.h"
#include "network/events/MsgEvent.h"
#include "network/events/UpdateSettingsEvent.h"
#include "tests/support/GuardedTest.h"

#include <QTest>

#include <functional>
#include <initializer_list>
#include <optional>

using namespace NetworkCompanion;
using Type = LV_NTC_EventType;
using Types = std::initializer_list<Type>;

namespace {

/// Records its name and the type of every event, then calls `then`.
class Recorder : public EventListener {
public:
    Recorder(QString name, QStringList& calls, Types types)
        : name_(std::move(name)), calls_(calls), subscription_(this, std::span(types)) {}

    void receive(Event* event) override {
        calls_ << name_ + QString::number(static_cast<int>(event->type()));
        if (then)
            std::exchange(then, nullptr)();
    }

    std::function<void()> then;

private:
    QString name_;
    QStringList& calls_;
    EventSubscription subscription_;
};

void dispatch(Event* event) {
    EventDispatcher::getInstance()->onEventData(
        {LV_NTC_Header{0, event == nullptr ? Type{} : event->type()}, event});
}

} // namespace

class TestEventDispatcher : public MeshpadTest::GuardedTest {
    Q_OBJECT

private slots:
    void callsListenersInOrderOfRegistration() {
        std::optional<Recorder> b(std::in_place, "b", calls_, Types{Type::Blind});
        Recorder c("c", calls_, {Type::Blind});
        Recorder a("a", calls_, {Type::MediaBlind, Type::Blind});
        EventDispatcher::getInstance()->addListener(&*b, Type::Blind); // is registered
        dispatch(new BlindEvent(0, 1, "", false));
        dispatch(new MediaBlindEvent);
        QCOMPARE(calls_, QStringList({"b3", "c3", "a3", "a4"}));

        b.reset();
        EventDispatcher::getInstance()->removeListener(&a, Type::Msg);
        EventDispatcher::getInstance()->removeListener(&a, Type::GetResourcesId);
        dispatch(new BlindEvent(0, 1, "", false));
        QCOMPARE(calls_.mid(4), QStringList({"c3", "a3"}));
    }

    /// The address sanitizer reports an event that is not deleted, or deleted too early.
    void deletesEveryEvent() {
        Recorder a("a", calls_, {Type::Msg});
        Recorder c("c", calls_, {Type::Msg});
        dispatch(new MsgEvent("text"));
        dispatch(new UpdateSettingsEvent("", 0)); // without a listener
        dispatch(nullptr);                        // an undecodable frame
        QCOMPARE(calls_, QStringList({"a1", "c1"}));
    }

    void allowsChangesOfListenersDuringDispatch() {
        Recorder a("a", calls_, {Type::AddMedia, Type::Blind});
        std::optional<Recorder> removed(std::in_place, "removed", calls_, Types{Type::AddMedia});
        Recorder c("c", calls_, {Type::AddMedia});
        std::optional<Recorder> added;
        a.then = [&] {
            removed.reset();
            // The second type makes the table of types grow.
            added.emplace("added", calls_, Types{Type::AddMedia, Type::ItemData});
            dispatch(new BlindEvent(0, 1, "", false));
        };
        c.then = [&] { // moves itself to the end
            EventDispatcher::getInstance()->removeListener(&c, Type::AddMedia);
            EventDispatcher::getInstance()->addListener(&c, Type::AddMedia);
        };
        dispatch(new AddMediaEvent);
        QCOMPARE(calls_, QStringList({"a9", "a3", "c9"}));

        calls_.clear();
        a.then = [] { dispatch(new AddMediaEvent); };
        dispatch(new AddMediaEvent);
        QCOMPARE(calls_, QStringList({"a9", "a9", "added9", "c9", "added9", "c9"}));
    }

private:
    void setUp() override { calls_.clear(); }

    QStringList calls_;
};

QTEST_GUILESS_MAIN(TestEventDispatcher)
#include "tst_event_dispatcher.moc"
