#pragma once

#include "tests/support/MessageGuard.h"

#include <QObject>

#include <optional>

namespace MeshpadTest {

/// Base class of tests: every test function checks the log. Own init() and cleanup() functions
/// call these first and last.
class GuardedTest : public QObject {
    Q_OBJECT

protected slots:
    void init() { messages_.emplace(); }
    void cleanup() { messages_.reset(); }

protected:
    std::optional<MessageGuard> messages_;
};

} // namespace MeshpadTest
