#include "app/Configuration.h"
#include "app/EventDispatcher.h"
#include "app/HeadBanner.h"
#include "network/CompanionServer.h"
#include "resources/CompanionResources.h"
#include "tests/support/MessageGuard.h"

#include <QApplication>
#include <QButtonGroup>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QWindow>

#include <optional>

using NetworkCompanion::CompanionServer;

/// The banner in a shown window, with a connection that really stands or not.
class TestHeadBanner : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        initCompanionResources();
        QVERIFY(server_.listen(QHostAddress::LocalHost, 0));
    }
    void init() {
        messages_.emplace();
        banner_ = std::make_unique<HeadBanner>(configuration_, nullptr);
        banner_->resize(1280, banner_->height());
        banner_->show();
        QVERIFY(QTest::qWaitForWindowExposed(banner_.get()));
    }
    void cleanup() {
        client().disconnectFromServer();
        banner_.reset();
        messages_->verify();
        messages_.reset();
    }

    void theConnectionDecidesTheLayout() {
        qApp->installEventFilter(this);
        for (int round = 0; round < 3; ++round) {
            banner_->updateBanner();
            QVERIFY(shows(configuration_.applicationName));
            QVERIFY(!shows(configuration_.disconnectButtonText));
            QVERIFY(!shows(configuration_.menuTabNames.first()));

            QVERIFY(client().connectToServer(QStringLiteral("127.0.0.1"), server_.port()));
            banner_->updateBanner();
            banner_->updateBanner(); // as after a reconnection
            QVERIFY(!shows(configuration_.applicationName));
            for (const QString& tab : configuration_.menuTabNames) {
                QVERIFY(shows(tab));
            }
            QTRY_VERIFY(shows(configuration_.disconnectButtonText));
            client().disconnectFromServer();
        }
        // Forth and back within one turn of the event loop, as fast as it gets.
        QVERIFY(client().connectToServer(QStringLiteral("127.0.0.1"), server_.port()));
        banner_->updateBanner();
        client().disconnectFromServer();
        banner_->updateBanner();
        QTest::qWait(50);
        qApp->removeEventFilter(this);
        QCOMPARE(strayWindows_, QStringList());
        QVERIFY(shows(configuration_.applicationName));
    }

    void disconnectAsksOnRelease() {
        QVERIFY(client().connectToServer(QStringLiteral("127.0.0.1"), server_.port()));
        banner_->updateBanner();
        QSignalSpy disconnections(banner_.get(), &HeadBanner::disconnection);
        // What the main window does with it takes the button away in the middle of its own click.
        connect(banner_.get(), &HeadBanner::disconnection, banner_.get(), [this] {
            client().disconnectFromServer();
            banner_->updateBanner();
        });
        QPushButton* button = buttons(configuration_.disconnectButtonText).first();
        // Sliding off takes the press back.
        QWindow* window = banner_->window()->windowHandle();
        const QPoint on = button->mapTo(banner_->window(), button->rect().center());
        const QPoint off = on - QPoint(button->width(), 0);
        QTest::mousePress(window, Qt::LeftButton, {}, on);
        QTest::mouseMove(window, off);
        QVERIFY(!button->isDown());
        QTest::mouseRelease(window, Qt::LeftButton, {}, off);
        QCOMPARE(disconnections.count(), 0);

        QTest::mousePress(button, Qt::LeftButton);
        QCOMPARE(disconnections.count(), 0);
        QTest::mouseRelease(button, Qt::LeftButton);
        QCOMPARE(disconnections.count(), 1);
        QVERIFY(shows(configuration_.applicationName));
    }

    void tabsAndCapsSelect_data() {
        QTest::addColumn<int>("position"); // among left cap, tabs, right cap
        QTest::addColumn<int>("tab");
        QTest::newRow("left cap") << 0 << 0;
        QTest::newRow("Warp") << 1 << 0;
        QTest::newRow("Quick Keys") << 2 << 1;
        QTest::newRow("Test patterns") << 3 << 2;
        QTest::newRow("Settings") << 4 << 3;
        QTest::newRow("right cap") << 5 << 3;
    }
    void tabsAndCapsSelect() {
        QFETCH(int, position);
        QFETCH(int, tab);
        QVERIFY(client().connectToServer(QStringLiteral("127.0.0.1"), server_.port()));
        banner_->updateBanner();
        const QList<QAbstractButton*> row = tabRow();
        QCOMPARE(row.size(), 6);
        QSignalSpy pressed(banner_.get(), &HeadBanner::menuTabPressed);
        QTest::mousePress(row[position], Qt::LeftButton);
        QCOMPARE(pressed.count(), 1); // already on the press
        QCOMPARE(pressed.first().first().toInt(), tab);
        QTest::mouseRelease(row[position], Qt::LeftButton);
        QCOMPARE(pressed.count(), 1);
        verifyOnlyMarked(tab + 1);
        QVERIFY(!banner_->isAncestorOf(QApplication::focusWidget()));
    }

    void startsWithTheFirstTabAndSurvivesOthers() {
        verifyOnlyMarked(1);
        QSignalSpy pressed(banner_.get(), &HeadBanner::menuTabPressed);
        for (const int id : {-1, 0, 5, 6, 99}) {
            banner_->onMenuTabPressed(id);
            QCOMPARE(pressed.takeFirst().first().toInt(), id - 1);
            verifyOnlyMarked(-1);
        }
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        const auto* widget = qobject_cast<QWidget*>(watched);
        if (event->type() == QEvent::Show && widget != nullptr && widget->isWindow() &&
            widget != banner_.get()) {
            strayWindows_ << QString::fromLatin1(widget->metaObject()->className());
        }
        return QObject::eventFilter(watched, event);
    }

private:
    static NetworkCompanion::CompanionClient& client() {
        return EventDispatcher::getInstance()->client();
    }
    QList<QPushButton*> buttons(const QString& text) const {
        QList<QPushButton*> found;
        for (QPushButton* button : banner_->findChildren<QPushButton*>()) {
            if (button->text() == text) {
                found << button;
            }
        }
        return found;
    }
    bool shows(const QString& text) const {
        for (const auto* label : banner_->findChildren<QLabel*>()) {
            if (label->isVisible() && label->text() == text) {
                return true;
            }
        }
        const auto found = buttons(text);
        return !found.isEmpty() && found.first()->isVisible();
    }
    /// From left to right.
    QList<QAbstractButton*> tabRow() const {
        return banner_->findChild<QButtonGroup*>()->buttons();
    }
    void verifyOnlyMarked(int position) const {
        QStringList styles;
        QStringList expected;
        using namespace ShellLook;
        const QList<QAbstractButton*> row = tabRow();
        for (int i = 0; i < row.size(); ++i) {
            styles << row[i]->styleSheet();
            expected << QLatin1StringView(i == 0   ? (position == 1 ? kLeftCapOn : kLeftCapOff)
                                          : i == 5 ? (position == 4 ? kRightCapOn : kRightCapOff)
                                          : i == position ? kTabOn
                                                          : kTabOff);
        }
        QCOMPARE(styles, expected);
    }

    const Configuration configuration_ = makeConfiguration();
    CompanionServer server_{nullptr};
    std::unique_ptr<HeadBanner> banner_;
    QStringList strayWindows_;
    std::optional<MeshpadTest::MessageGuard> messages_;
};

QTEST_MAIN(TestHeadBanner)
#include "tst_head_banner.moc"
