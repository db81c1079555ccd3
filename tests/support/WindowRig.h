#pragma once

#include "app/GuiCompanion.h"
#include "network/events/MediaMovePointEvent.h"
#include "tests/support/Rig.h"
#include "tests/support/SceneView.h"

#include <memory>

namespace MeshpadTest {

/// The whole window. Tests that need no other Producer edit a media of the fake one.
class WindowRig : public Rig, public SceneView {
public:
    static constexpr quint16 kProducerPort = 62330;
    static constexpr unsigned int kCue = 11;
    static constexpr int kMediaId = 5;

    /// Creates the window without showing it.
    explicit WindowRig(const Timing& timing = {.tickPeriod = std::chrono::milliseconds(5),
                                               .inputDelay = std::chrono::milliseconds(30)});
    /// Disconnects and destroys the window, if it still exists.
    ~WindowRig();

    /// Shows the window and waits until it is active.
    void show();
    /// Shows the window and connects it to the fake Producer.
    void open();
    /// Whether the window is connected and takes input.
    bool isReady() const;
    /// Destroys the window without disconnecting it.
    void close();
    template <typename Widget>
    Widget* find() const {
        return window->findChild<Widget*>();
    }

    /// The Producer adds a media with a curve of that many points a side.
    void sendMedia(int dataIndex, int side, unsigned int cue = kCue);
    /// Selects that media in the list; returns when its mesh exists.
    void select(int dataIndex, int side);
    auto moves() const { return producer.eventsOf<NetworkCompanion::MediaMovePointEvent>(); }

    std::unique_ptr<GuiCompanion> window;
};

} // namespace MeshpadTest
