#include "input/key_event_listener.h"
#include "input/key_event_manager.h"
#include "tests/support/GuardedTest.h"

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

class TestKeyEventManager : public GuardedTest {
    Q_OBJECT

private slots:
    void acceptedKeysReachEverybodyInOrder();
    void listenersMayComeAndGoMeanwhile();

private:
    QKeyEvent key_{QEvent::KeyPress, Qt::Key_B, Qt::NoModifier};
};

void TestKeyEventManager::acceptedKeysReachEverybodyInOrder() {
    KeyEventManager* manager = KeyEventManager::getInstance();
    QStringList order;
    Listener first([&](QKeyEvent* key) {
        order << "first";
        key->accept();
    });
    Listener second([&](QKeyEvent* key) { order << (key->isAccepted() ? "second" : "too early"); });
    manager->addListener(&first);
    key_.ignore();
    manager->notifyListeners(&key_);
    QCOMPARE(order, QStringList({"first", "second", "first"}));
    // Added twice, it has to be removed twice.
    manager->removeListener(&first);
    manager->notifyListeners(&key_);
    QCOMPARE(order.mid(3), QStringList({"second", "first"}));
    manager->removeListener(&first);
    messages_->expect(QtWarningMsg, "No key event listener to remove!");
    manager->removeListener(&first);
    manager->notifyListeners(&key_);
    QCOMPARE(order.mid(5), QStringList({"second"}));
    manager->addListener(&first); // who goes removes itself
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
