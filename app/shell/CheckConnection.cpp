#include "app/shell/CheckConnection.h"

#include "app/shell/EventDispatcher.h"

#include <QCoreApplication>
#include <QEvent>

#include <algorithm>

namespace {

constexpr std::chrono::seconds kLatestAnnouncement{1}; // largest age of a check that is announced

} // namespace

CheckConnection::CheckConnection(QObject* parent, const Timing& timing)
    : StoppableThread(parent), timing_(timing) {
    connect(this, &CheckConnection::seen, this, &CheckConnection::announce, Qt::QueuedConnection);
}

CheckConnection::~CheckConnection() {
    CheckConnection::stop();
}

void CheckConnection::setWatchedAddress(const QString& address) {
    const std::lock_guard lock(addressMutex_);
    watchedAddress_ = address;
}

void CheckConnection::stop() {
    StoppableThread::stop();
    QCoreApplication::removePostedEvents(this, QEvent::MetaCall);
    announcementPending_ = false;
}

void CheckConnection::loop() {
    if (!pause(timing_.firstCheckDelay))
        return;
    do {
        if (isWatchedServerAvailable() && !announcementPending_.exchange(true)) {
            seenAt_ = Clock::now();
            emit seen(QPrivateSignal());
        }
    } while (pause(timing_.checkPeriod));
}

void CheckConnection::announce() {
    announcementPending_ = false;
    // After a long connection attempt, an old announcement would start the next attempt before
    // discovery can notice that the Producer is gone.
    if (Clock::now() - seenAt_.load() < kLatestAnnouncement && isWatchedServerAvailable())
        emit serverAvailableAgain();
}

bool CheckConnection::isWatchedServerAvailable() {
    const auto servers = EventDispatcher::getInstance()->networkUtils().getAvailableServers();
    const std::lock_guard lock(addressMutex_);
    return std::find(servers.begin(), servers.end(), watchedAddress_) != servers.end();
}
