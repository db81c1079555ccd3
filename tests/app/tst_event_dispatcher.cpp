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

using namespace NetworkCompanion;
using Type = LV_NTC_EventType;

namespace {

/// Records its name and the type of every event, then calls `then`.
class Recorder : public EventListener {
public:
    Recorder(QString name, QStringList& calls) : name_(std::move(name)), calls_(calls) {}

    void listenTo(Type type) {
        subscriptions_.push_back(
            std::make_unique<EventSubscription>(this, std::span<const Type>(&type, 1)));
    }
    void receive(Event* event) override {
        calls_ << name_ + QString::number(static_cast<int>(event->type()));
        if (then)
            std::exchange(then, nullptr)();
    }

    std::function<void()> then;

private:
    QString name_;
    QStringList& calls_;
    std::vector<std::unique_ptr<EventSubscription>> subscriptions_;
};

void dispatch(Event* event) {
    EventDispatcher::getInstance()->onEventData(
        {LV_NTC_Header{0, event == nullptr ? Type{} : event->type()}, event});
}

} // namespace

class TestEventDispatcher : public MeshpadTest::GuardedTest {
    Q_OBJECT

private slots:
    void init() {
        GuardedTest::init();
        calls_.clear();
    }

    void callsListenersInOrderOfRegistration() {
        Recorder a("a", calls_);
        auto b = std::make_unique<Recorder>("b", calls_);
        Recorder c("c", calls_);
        b->listenTo(Type::Blind);
        a.listenTo(Type::MediaBlind);
        c.listenTo(Type::Blind);
        a.listenTo(Type::Blind);
        EventDispatcher::getInstance()->addListener(b.get(), Type::Blind); // is registered
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
        Recorder a("a", calls_);
        Recorder c("c", calls_);
        a.listenTo(Type::Msg);
        c.listenTo(Type::Msg);
        dispatch(new MsgEvent("text"));
        dispatch(new UpdateSettingsEvent("", 0)); // without a listener
        dispatch(nullptr);                        // an undecodable frame
        QCOMPARE(calls_, QStringList({"a1", "c1"}));
    }

    void listenersMayChangeDuringADispatch() {
        Recorder a("a", calls_);
        auto removed = std::make_unique<Recorder>("removed", calls_);
        Recorder c("c", calls_);
        Recorder added("added", calls_);
        a.listenTo(Type::AddMedia);
        a.listenTo(Type::Blind);
        removed->listenTo(Type::AddMedia);
        c.listenTo(Type::AddMedia);
        a.then = [&] {
            removed.reset();
            added.listenTo(Type::AddMedia);
            added.listenTo(Type::ItemData); // makes the table of types grow
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
    QStringList calls_;
};

QTEST_GUILESS_MAIN(TestEventDispatcher)
#include "tst_event_dispatcher.moc"
