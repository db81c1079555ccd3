#include "app/shell/EventDispatcher.h"
#include "app/shell/EventListener.h"
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

/// Writes its name down for every event and may then do something to the dispatcher.
class Recorder : public EventListener {
public:
    Recorder(QString name, QStringList& calls) : name_(std::move(name)), calls_(calls) {}
    ~Recorder() override {
        for (const Type type : types_)
            EventDispatcher::getInstance()->removeListener(this, type);
    }
    Q_DISABLE_COPY_MOVE(Recorder)

    void listenTo(Type type) {
        types_.push_back(type);
        EventDispatcher::getInstance()->addListener(this, type);
    }
    void receive(Event* event) override {
        calls_ << name_ + QString::number(static_cast<int>(event->type()));
        if (then)
            then();
    }

    std::function<void()> then;

private:
    QString name_;
    QStringList& calls_;
    std::vector<Type> types_;
};

void dispatch(Event* event) {
    EventDispatcher::getInstance()->onEventData(
        {LV_NTC_Header{0, event == nullptr ? Type{} : event->type()}, event});
}

} // namespace

/// Everything that dispatching promises, with events handed in as the client hands them in.
class TestEventDispatcher : public MeshpadTest::GuardedTest {
    Q_OBJECT

private slots:
    void init() {
        GuardedTest::init();
        calls_.clear();
    }

    void listenersAreCalledInOrderOfRegistration() {
        Recorder a(QStringLiteral("a"), calls_);
        Recorder c(QStringLiteral("c"), calls_);
        {
            Recorder b(QStringLiteral("b"), calls_);
            b.listenTo(Type::Blind);
            a.listenTo(Type::MediaBlind);
            c.listenTo(Type::Blind);
            a.listenTo(Type::Blind);
            b.listenTo(Type::Blind); // once more changes nothing
            dispatch(new BlindEvent(0, 1, "", false));
            dispatch(new MediaBlindEvent);
            QCOMPARE(calls_, QStringList({"b3", "c3", "a3", "a4"}));
        }
        auto* dispatcher = EventDispatcher::getInstance();
        dispatcher->removeListener(&a, Type::Msg);            // not registered for this one
        dispatcher->removeListener(&a, Type::GetResourcesId); // a type that nobody ever used
        calls_.clear();
        dispatch(new BlindEvent(0, 1, "", false));
        QCOMPARE(calls_, QStringList({"c3", "a3"}));
    }

    /// Once, and after its listeners: memory tools would see anything else.
    void everyEventIsDeleted() {
        Recorder a(QStringLiteral("a"), calls_);
        Recorder b(QStringLiteral("b"), calls_);
        a.listenTo(Type::Msg);
        b.listenTo(Type::Msg);
        dispatch(new MsgEvent("heard"));
        dispatch(new UpdateSettingsEvent("", 0)); // nobody listens
        dispatch(nullptr);                        // an undecodable frame
        QCOMPARE(calls_, QStringList({"a1", "b1"}));
    }

    void listenersMayComeAndGoDuringADispatch() {
        auto leaving = std::make_unique<Recorder>(QStringLiteral("leaving"), calls_);
        Recorder first(QStringLiteral("first"), calls_);
        Recorder last(QStringLiteral("last"), calls_);
        Recorder late(QStringLiteral("late"), calls_);
        first.listenTo(Type::AddMedia);
        leaving->listenTo(Type::AddMedia);
        last.listenTo(Type::AddMedia);
        first.then = [&] {
            leaving.reset();
            late.listenTo(Type::AddMedia);
            late.listenTo(Type::ItemData); // makes the table of types grow
            first.then = nullptr;
            dispatch(new BlindEvent(0, 1, "", false)); // within the other
        };
        first.listenTo(Type::Blind);
        // Leaves and comes back in the middle of its own call: again at the end of the queue.
        last.then = [&] {
            last.then = nullptr;
            EventDispatcher::getInstance()->removeListener(&last, Type::AddMedia);
            EventDispatcher::getInstance()->addListener(&last, Type::AddMedia);
        };
        dispatch(new AddMediaEvent);
        QCOMPARE(calls_, QStringList({"first9", "first3", "last9"}));

        calls_.clear();
        first.then = [&] {
            first.then = nullptr;
            dispatch(new AddMediaEvent); // the same within itself
        };
        dispatch(new AddMediaEvent);
        QCOMPARE(calls_, QStringList({"first9", "first9", "late9", "last9", "late9", "last9"}));
    }

private:
    QStringList calls_;
};

QTEST_GUILESS_MAIN(TestEventDispatcher)
#include "tst_event_dispatcher.moc"
