#include "app/Configuration.h"
#include "app/ConnectPage.h"
#include "app/EventDispatcher.h"
#include "app/IPList.h"
#include "resources/CompanionResources.h"
#include "tests/support/MessageGuard.h"

#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QUdpSocket>

#include <optional>
#include <thread>

namespace {

const QString kFirst = QStringLiteral("10.0.0.1");
const QString kSecond = QStringLiteral("10.0.0.10"); // begins like the first one
const QString kListed = QStringLiteral("10.77.0.1"); // of the virtual interface of this test

auto& discovery() {
    return EventDispatcher::getInstance()->networkUtils();
}

} // namespace

/// The page in a shown window, told about Producers by the signals of the real discovery service
/// and used by mouse.
class TestConnectPage : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { initCompanionResources(); }
    void init() {
        messages_.emplace();
        page_ = std::make_unique<ConnectPage>(configuration_, nullptr);
        page_->resize(1280, 610);
        page_->show();
        QVERIFY(QTest::qWaitForWindowExposed(page_.get()));
        list_ = page_->findChild<IPList*>();
        connectButton_ = page_->findChild<QPushButton*>(QStringLiteral("connectButton"));
    }
    void cleanup() {
        page_.reset();
        messages_->verify();
        messages_.reset();
    }

    void theListFollowsDiscoveryFromAnyThread() {
        emit discovery().serverDiscovered(kFirst);
        emit discovery().serverDiscovered(kSecond);
        emit discovery().serverDiscovered(kFirst);
        QCOMPARE(listed(), QStringList({kFirst, kSecond}));

        emit discovery().serverTimeouted(QStringLiteral("10.0.0.100"));
        std::thread([] { emit discovery().serverTimeouted(kFirst); }).join();
        QCOMPARE(listed(), QStringList({kFirst, kSecond})); // not on that thread
        QTRY_COMPARE(listed(), QStringList({kSecond}));

        emit discovery().serverDiscovered(kFirst);
        emit discovery().serverDisconnected(kSecond);
        QCOMPARE(listed(), QStringList({kFirst}));

        // A purged address comes back only after it was dropped.
        page_->purgeIp();
        emit discovery().serverDiscovered(kFirst);
        QCOMPARE(listed(), QStringList());
        emit discovery().serverTimeouted(kFirst);
        emit discovery().serverDiscovered(kFirst);
        QCOMPARE(listed(), QStringList({kFirst}));
    }

    void aProducerThatIsBackBeforeItsTimeoutArrivesStaysListed() {
        QUdpSocket producer;
        QVERIFY(producer.bind(QHostAddress(kListed)));
        producer.writeDatagram("PingReceived", QHostAddress(kListed), 62331);
        QTRY_COMPARE(listed(), QStringList({kListed}));
        emit discovery().serverTimeouted(kListed); // late news
        QCOMPARE(listed(), QStringList({kListed}));
        discovery().serverHasDisconnected(kListed);
        QCOMPARE(listed(), QStringList());
    }

    void oneAddressIsMarkedAndConnectedTo() {
        emit discovery().serverDiscovered(kFirst);
        emit discovery().serverDiscovered(kSecond);
        QSignalSpy connections(page_.get(), &ConnectPage::connection);
        QTest::mouseClick(connectButton_, Qt::LeftButton); // nothing is selected
        QCOMPARE(connections.count(), 0);
        QVERIFY(!isConnectOffered());

        QTest::mouseClick(buttonOf(kSecond), Qt::LeftButton);
        QTest::mouseClick(buttonOf(kFirst), Qt::LeftButton);
        QCOMPARE(listed(), QStringList({kFirst + " marked", kSecond}));
        QVERIFY(isConnectOffered());
        // The selection outlives its button.
        emit discovery().serverTimeouted(kFirst);
        QCOMPARE(listed(), QStringList({kSecond}));
        QVERIFY(isConnectOffered());
        emit discovery().serverDiscovered(kFirst);
        QCOMPARE(listed(), QStringList({kSecond, kFirst + " marked"}));

        QTest::mouseClick(connectButton_, Qt::LeftButton);
        QCOMPARE(connections.count(), 1);
        QCOMPARE(connections.first().first().toString(), kFirst);
        QCOMPARE(listed(), QStringList({kSecond, kFirst}));
        QVERIFY(!isConnectOffered());
        QTest::mouseClick(connectButton_, Qt::LeftButton);
        QCOMPARE(connections.count(), 1);
    }

    void anAddressMayGoWhileItIsBeingPressed() {
        emit discovery().serverDiscovered(kFirst);
        QPushButton* button = buttonOf(kFirst);
        QTRY_VERIFY(button->isVisible());
        const QPoint place = button->mapTo(page_.get(), button->rect().center());
        QTest::mousePress(page_->windowHandle(), Qt::LeftButton, {}, place);
        QVERIFY(button->isDown());
        emit discovery().serverTimeouted(kFirst);
        QTest::mouseRelease(page_->windowHandle(), Qt::LeftButton, {}, place);
        QVERIFY(list_->selectedIp().isEmpty());
    }

    void manyProducersCanBeScrolledTo() {
        for (int i = 0; i < 40; ++i) {
            emit discovery().serverDiscovered(QStringLiteral("10.0.1.%1").arg(i));
        }
        QPushButton* last = buttonOf(QStringLiteral("10.0.1.39"));
        auto* scrollBar = page_->findChild<QScrollArea*>()->verticalScrollBar();
        QTRY_VERIFY(scrollBar->maximum() > 0);
        scrollBar->setValue(scrollBar->maximum());
        QVERIFY(page_->rect().contains(QRect(last->mapTo(page_.get(), QPoint()), last->size())));
        QVERIFY(page_->rect().contains(connectButton_->geometry()));
    }

private:
    QStringList listed() const {
        QStringList texts;
        for (const QPushButton* button : list_->findChildren<QPushButton*>()) {
            const bool isMarked =
                button->styleSheet() == QLatin1StringView(ShellLook::kAddressButtonOn);
            texts << button->text() + (isMarked ? " marked" : "");
        }
        return texts;
    }
    QPushButton* buttonOf(const QString& ip) const {
        for (QPushButton* button : list_->findChildren<QPushButton*>()) {
            if (button->text() == ip) {
                return button;
            }
        }
        return nullptr;
    }
    /// By picture and by cursor.
    bool isConnectOffered() const {
        return connectButton_->styleSheet() == QLatin1StringView(ShellLook::kConnectButtonOn) &&
               connectButton_->cursor().shape() == Qt::PointingHandCursor;
    }

    const Configuration configuration_ = makeConfiguration();
    std::unique_ptr<ConnectPage> page_;
    IPList* list_ = nullptr;
    QPushButton* connectButton_ = nullptr;
    std::optional<MeshpadTest::MessageGuard> messages_;
};

QTEST_MAIN(TestConnectPage)
#include "tst_connect_page.moc"
