#pragma once

#include <QStringList>
#include <QThread>

#include <functional>
#include <memory>

namespace MeshpadTest {

/// A second machine: a thread with its own network namespace, to which the sockets that run() opens
/// belong. Needs the rights that a test has inside its own namespace; Linux only.
class PeerNamespace {
public:
    PeerNamespace();
    ~PeerNamespace();

    /// Whether the namespace was created.
    bool isValid() const { return threadId_ > 0; }
    /// Runs the work on the peer's thread, which has an event loop, and waits for it.
    void run(const std::function<void()>& work);
    /// As run(); returns the work's result.
    template <typename Work>
    auto get(Work work) {
        decltype(work()) result{};
        run([&] { result = work(); });
        return result;
    }
    /// Creates an object on the peer's thread; the last pointer destroys it there.
    template <typename Object>
    std::shared_ptr<Object> make(const std::function<Object*()>& create) {
        return {get(create), [this](Object* object) { run([=] { delete object; }); }};
    }

    /// Runs "ip" on the peer, or in the test's own namespace. False when it fails.
    bool ip(const QString& arguments);
    static bool ipHere(const QString& arguments);
    /// Creates a veth pair from here to the peer, each end up with its IPv4 address on a /24.
    bool link(const QString& nameHere, const QString& addressHere, const QString& nameThere,
              const QString& addressThere);

private:
    class Worker;

    QThread thread_;
    std::unique_ptr<Worker> worker_;
    qint64 threadId_ = 0;
};

} // namespace MeshpadTest
