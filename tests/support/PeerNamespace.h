#pragma once

#include <QStringList>
#include <QThread>

#include <functional>
#include <memory>

namespace MeshpadTest {

/// A second machine: a thread with a network namespace of its own. Sockets that run() opens belong
/// to it. Needs the rights that a test has inside its own namespace; Linux only.
class PeerNamespace {
public:
    PeerNamespace();
    ~PeerNamespace();

    /// Whether the namespace could be made.
    bool isValid() const { return threadId_ > 0; }
    /// Runs on the peer's thread, which has an event loop, and waits for the end.
    void run(const std::function<void()>& work);
    /// An object on the peer's thread. The pointer it is destroyed with destroys it there.
    template <typename Object>
    std::shared_ptr<Object> make(const std::function<Object*()>& create);

    /// Runs "ip" there, or here; tells whether it succeeded.
    bool ip(const QString& arguments);
    static bool ipHere(const QString& arguments);
    /// Makes a veth pair: one end here, the other there, each up with its IPv4 address on a /24.
    bool link(const QString& nameHere, const QString& addressHere, const QString& nameThere,
              const QString& addressThere);

private:
    class Worker;

    QThread thread_;
    std::unique_ptr<Worker> worker_;
    qint64 threadId_ = 0;
};

template <typename Object>
std::shared_ptr<Object> PeerNamespace::make(const std::function<Object*()>& create) {
    Object* object = nullptr;
    run([&] { object = create(); });
    return {object, [this](Object* it) { run([=] { delete it; }); }};
}

} // namespace MeshpadTest
