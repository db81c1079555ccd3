#pragma once

#include "network/Event.h"

#include <QByteArray>

#include <memory>
#include <vector>

/// An event and the payload that it is on the wire, written down by hand.
struct GoldenEvent {
    int code;
    std::shared_ptr<NetworkCompanion::Event> event;
    QByteArray payload;
};

/// At least one of each kind; every field has a value of its own.
std::vector<GoldenEvent> goldenEvents();
