#include "input/key_event_listener.h"
#include "input/key_event_manager.h"
#include "tests/support/MessageGuard.h"

#include <QKeyEvent>
#include <QTest>

#include <functional>

using namespace MeshpadTest;

namespace {

/// Registers while it lives, as the real listeners do.
class Listener : public KeyEventListener {
public:
    explicit Listener(std::function<void(QKeyEvent*)> work) : work_(std::move(work)) {
        KeyEventManager::getInstance()->addListener(this);
    }
    ~Listener() override { KeyEventManager::getInstance()->removeListener(this); }
    void notified(QKeyEvent* keyEvent) override { work_(keyEvent); }

private:
    std::function<void(QKeyEvent*)> work_;
};

} // namespace

class TestKeyEventManager : public QObject {
    Q_OBJECT

private slots:
    void init() { messages_.emplace(); }
    void cleanup() {
        messages_->verify();
        messages_.reset();
    }

    void acceptedKeysReachEverybodyInOrder();
    void removedListenersAreNotNotified();
    void listenersMayComeAndGoMeanwhile();

private:
    std::optional<MessageGuard> messages_;
    QKeyEvent key_{QEvent::KeyPress, Qt::Key_B, Qt::NoModifier};
};

void TestKeyEventManager::acceptedKeysReachEverybodyInOrder() {
    QStringList order;
    Listener first([&](QKeyEvent* key) {
        order << "first";
        key->accept();
    });
    Listener second([&](QKeyEvent* key) { order << (key->isAccepted() ? "second" : "too early"); });
    KeyEventManager::getInstance()->addListener(&first);
    key_.ignore();
    KeyEventManager::getInstance()->notifyListeners(&key_);
    QCOMPARE(order, QStringList({"first", "second", "first"}));
    // Added twice, it has to be removed twice.
    KeyEventManager::getInstance()->removeListener(&first);
    order.clear();
    KeyEventManager::getInstance()->notifyListeners(&key_);
    QCOMPARE(order, QStringList({"second", "first"}));
}

void TestKeyEventManager::removedListenersAreNotNotified() {
    int removed = 0, stayed = 0;
    Listener stays([&](QKeyEvent*) { ++stayed; });
    Listener goes([&](QKeyEvent*) { ++removed; });
    KeyEventManager::getInstance()->removeListener(&goes);
    messages_->expect(QtWarningMsg, "No key event listener to remove!");
    KeyEventManager::getInstance()->removeListener(&goes);
    KeyEventManager::getInstance()->notifyListeners(&key_);
    QCOMPARE(removed, 0);
    QCOMPARE(stayed, 1);
    KeyEventManager::getInstance()->addListener(&goes);
}

void TestKeyEventManager::listenersMayComeAndGoMeanwhile() {
    int late = 0;
    std::unique_ptr<Listener> closed, opened;
    Listener opener([&](QKeyEvent*) {
        closed.reset();
        opened = std::make_unique<Listener>([&](QKeyEvent*) { ++late; });
    });
    closed = std::make_unique<Listener>([&](QKeyEvent*) { ++late; });
    KeyEventManager::getInstance()->notifyListeners(&key_);
    QCOMPARE(late, 0);
}

QTEST_GUILESS_MAIN(TestKeyEventManager)
#include "tst_key_event_manager.moc"
