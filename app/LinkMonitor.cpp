#include "app/LinkMonitor.h"

#include "app/shell/EventDispatcher.h"

using namespace std::chrono_literals;
using NetworkCompanion::NetworkUtils;

namespace {

constexpr auto kUpdatePeriod = 250ms; // changing more often, the number could not be read
// Of a write for its echo. A refusal is decided up to 50 ms after a second.
constexpr auto kLongestWait = 1'100ms;

} // namespace

LinkMonitor::LinkMonitor(QObject* parent) : QObject(parent) {
    const NetworkUtils* discovery = &EventDispatcher::getInstance()->networkUtils();
    connect(
        discovery, &NetworkUtils::serverDiscovered, this,
        [this](const QString& address) { setListed(address, true); });
    connect(discovery, &NetworkUtils::serverTimeouted, this,
            [this](const QString& address) { setListed(address, false); });
    updateTimer_.setSingleShot(true);
    connect(&updateTimer_, &QTimer::timeout, this, &LinkMonitor::update);
    connect(&echoTimes_, &EchoTimes::changed, this, [this] {
        if (link_.state == Link::State::NotAnswering && !echoTimes_.unconfirmedSince())
            update();
        else if (!updateTimer_.isActive())
            updateTimer_.start(kUpdatePeriod);
    });
}

void LinkMonitor::onConnected(const QString& address) {
    connected_ = true;
    address_ = address;
    listed_ =
        EventDispatcher::getInstance()->networkUtils().getAvailableServers().contains(address);
    wasListed_ = listed_;
    echoTimes_.reset();
    update();
}

void LinkMonitor::onLost() {
    connected_ = false;
    update();
}

void LinkMonitor::setListed(const QString& address, bool listed) {
    if (address != address_)
        return;
    listed_ = listed;
    wasListed_ = wasListed_ || listed;
    update();
}

void LinkMonitor::update() {
    bool answers = listed_ || !wasListed_;
    const auto since = echoTimes_.unconfirmedSince();
    if (since && echoTimes_.hasEchoed()) {
        const auto wait = EchoTimes::Clock::now() - *since;
        answers = answers && wait <= kLongestWait;
        if (connected_)
            updateTimer_.start(kUpdatePeriod);
    }
    const Link before = link_;
    link_.address = address_;
    link_.echoMs = echoTimes_.medianMs();
    if (!connected_)
        link_.state = Link::State::Trying;
    else
        link_.state = answers ? Link::State::Connected : Link::State::NotAnswering;
    if (link_ != before)
        emit changed();
}
