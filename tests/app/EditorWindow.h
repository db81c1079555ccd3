#pragma once

#include "app/GuiCompanion.h"
#include "network/events/MediaMovePointEvent.h"
#include "tests/support/FakeProducer.h"
#include "tests/support/MessageGuard.h"
#include "tests/support/WindowUnderTest.h"

#include <QQuickWidget>
#include <QVariant>

#include <memory>

namespace MeshpadTest {

/// The whole window beside a fake Producer on the loopback, to edit a media in; and the watched
/// log.
class EditorWindow {
public:
    static constexpr unsigned int kCue = 11;
    static constexpr int kMediaId = 5;

    /// The window is there, but not shown.
    EditorWindow();
    ~EditorWindow();
    Q_DISABLE_COPY_MOVE(EditorWindow)

    /// Shows the window and connects it.
    void open();
    /// The Producer tells of a media with a curve of that many points a side.
    void sendMedia(int dataIndex, int side, unsigned int cue = kCue);
    /// Selects that media in the list; returns when its mesh is there.
    void select(int dataIndex, int side);
    /// Waits until everything that was sent so far has arrived at the Producer.
    void settle();

    /// A JavaScript expression in the scope of the scene's root; fails the test when it throws.
    QVariant evaluate(const QString& expression) const;
    double number(const QString& expression) const { return evaluate(expression).toDouble(); }
    auto moves() const { return producer.eventsOf<NetworkCompanion::MediaMovePointEvent>(); }

    MessageGuard messages;
    FakeProducer producer;
    std::unique_ptr<GuiCompanion> window;
    QQuickWidget* view;
};

} // namespace MeshpadTest
