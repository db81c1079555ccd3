#pragma once

#include "tests/support/MessageGuard.h"

#include <QObject>

#include <optional>

namespace MeshpadTest {

/// A test of which every function watches the message log. A test with more to do before or after
/// each function calls these first and last.
class GuardedTest : public QObject {
    Q_OBJECT

protected slots:
    void init() { messages_.emplace(); }
    void cleanup() {
        messages_->verify();
        messages_.reset();
    }

protected:
    std::optional<MessageGuard> messages_;
};

} // namespace MeshpadTest
