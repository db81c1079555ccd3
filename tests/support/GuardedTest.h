#pragma once

#include "tests/support/MessageGuard.h"

#include <QObject>

#include <optional>

namespace MeshpadTest {

/// Base class of tests: every test function checks the log, setUp() and tearDown() included.
class GuardedTest : public QObject {
    Q_OBJECT

protected slots:
    void init() { messages_.emplace(), setUp(); }
    void cleanup() { tearDown(), messages_.reset(); }

protected:
    virtual void setUp() {}
    virtual void tearDown() {}

    std::optional<MessageGuard> messages_;
};

} // namespace MeshpadTest
