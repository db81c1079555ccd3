#include "app/CheckConnection.h"

#include "app/EventDispatcher.h"

#include <QCoreApplication>
#include <QEvent>

#include <algorithm>

CheckConnection::CheckConnection(QObject* parent) : StoppableThread(parent) {}

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

void CheckConnection::run() {
    if (!pause(firstCheckDelay)) {
        return;
    }
    do {
        if (isWatchedServerAvailable() && !announcementPending_.exchange(true)) {
            const auto checked = Clock::now();
            QMetaObject::invokeMethod(
                this, [this, checked] { announce(checked); }, Qt::QueuedConnection);
        }
    } while (pause(checkPeriod));
}

void CheckConnection::announce(Clock::time_point checked) {
    announcementPending_ = false;
    // Old news, as after an attempt to connect that took long, would only start the next attempt
    // before discovery had a chance to notice that the Producer is gone.
    if (Clock::now() - checked < kCheckPeriod && isWatchedServerAvailable()) {
        emit serverAvailableAgain();
    }
}

bool CheckConnection::isWatchedServerAvailable() {
    const auto servers = EventDispatcher::getInstance()->networkUtils().getAvailableServers();
    const std::lock_guard lock(addressMutex_);
    return std::find(servers.begin(), servers.end(), watchedAddress_) != servers.end();
}
