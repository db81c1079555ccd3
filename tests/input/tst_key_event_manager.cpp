#include "input/key_event_listener.h"
#include "input/key_event_manager.h"
#include "tests/support/GuardedTest.h"

#include <QKeyEvent>
#include <QTest>

#include <functional>

using namespace MeshpadTest;

struct Listener : KeyEventListener {
    explicit Listener(std::function<void(QKeyEvent*)> function) : function_(std::move(function)) {
        KeyEventManager::getInstance()->addListener(this);
    }
    ~Listener() override { KeyEventManager::getInstance()->removeListener(this); }
    void notified(QKeyEvent* keyEvent) override { function_(keyEvent); }

    std::function<void(QKeyEvent*)> function_;
};

class TestKeyEventManager : public GuardedTest {
    Q_OBJECT

private slots:
    void notifiesAllListenersInOrder() {
        QStringList order;
        Listener first([&](QKeyEvent* key) { order << "first", key->accept(); });
        Listener second(
            [&](QKeyEvent* key) { order << QString("second %1").arg(key->isAccepted()); });
        manager_->addListener(&first);
        key_.ignore();
        manager_->notifyListeners(&key_);
        QCOMPARE(order, QStringList({"first", "second 1", "first"}));
        manager_->removeListener(&first); // its oldest registration
        manager_->notifyListeners(&key_);
        QCOMPARE(order.mid(3), QStringList({"second 1", "first"}));
        messages_->expect(QtWarningMsg, "No key event listener to remove!");
        manager_->removeListener(&first);
        manager_->removeListener(&first);
        manager_->addListener(&first); // for its destructor
    }

    void allowsChangesOfListenersDuringKey() {
        int notified = 0;
        std::unique_ptr<Listener> removed;
        std::unique_ptr<Listener> added;
        Listener changer([&](QKeyEvent*) {
            removed.reset();
            added = std::make_unique<Listener>([&](QKeyEvent*) { ++notified; });
        });
        removed = std::make_unique<Listener>([&](QKeyEvent*) { ++notified; });
        manager_->notifyListeners(&key_);
        QCOMPARE(notified, 0);
    }

private:
    KeyEventManager* manager_ = KeyEventManager::getInstance();
    QKeyEvent key_{QEvent::KeyPress, Qt::Key_B, Qt::NoModifier};
};

QTEST_GUILESS_MAIN(TestKeyEventManager)
#include "tst_key_event_manager.moc"
