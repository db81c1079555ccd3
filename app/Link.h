#pragma once

#include <QString>

#include <optional>

/// What the operator must know about the connection to the Producer.
struct Link {
    enum class State {
        Connected,
        NotAnswering, ///< connected, but the Producer does not react
        Trying        ///< the connection is lost
    };

    State state = State::Trying;
    QString address;           ///< of the Producer
    std::optional<int> echoMs; ///< how fast it echoes a change, in milliseconds

    bool operator==(const Link&) const = default;
};
