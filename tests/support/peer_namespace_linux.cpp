#include "tests/support/PeerNamespace.h"

#include <QCoreApplication>
#include <QEvent>
#include <QProcess>

#include <semaphore>

#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace MeshpadTest {

namespace {

/// Runs as a child of the calling thread and therefore in its namespace.
bool runIp(const QString& arguments) {
    return QProcess::execute("ip", arguments.split(' ')) == 0;
}

} // namespace

/// Runs work on its thread. Semaphores order the threads because the thread sanitizer does not see
/// the synchronisation inside Qt's library.
class PeerNamespace::Worker : public QObject {
public:
    void run(const std::function<void()>& work) {
        work_ = &work;
        ready_.release();
        QCoreApplication::postEvent(this, new QEvent(QEvent::User));
        done_.acquire();
    }

protected:
    void customEvent(QEvent*) override {
        ready_.acquire();
        (*work_)();
        done_.release();
    }

private:
    std::binary_semaphore ready_{0}, done_{0};
    const std::function<void()>* work_ = nullptr;
};

PeerNamespace::PeerNamespace() : worker_(std::make_unique<Worker>()) {
    worker_->moveToThread(&thread_);
    thread_.start();
    run([this] {
        if (unshare(CLONE_NEWNET) == 0 && runIp("link set lo up"))
            threadId_ = syscall(SYS_gettid);
    });
}

PeerNamespace::~PeerNamespace() {
    thread_.quit();
    thread_.wait();
}

void PeerNamespace::run(const std::function<void()>& work) {
    worker_->run(work);
}

bool PeerNamespace::ip(const QString& arguments) {
    return get([&] { return runIp(arguments); });
}

bool PeerNamespace::ipHere(const QString& arguments) {
    return runIp(arguments);
}

bool PeerNamespace::link(const QString& nameHere, const QString& addressHere,
                         const QString& nameThere, const QString& addressThere) {
    const QString add = "address add %1/24 broadcast + dev %2";
    return ipHere(QString("link add %1 type veth peer name %2 netns %3")
                      .arg(nameHere, nameThere)
                      .arg(threadId_)) &&
           ipHere(add.arg(addressHere, nameHere)) && ip(add.arg(addressThere, nameThere)) &&
           ipHere(QString("link set %1 up").arg(nameHere)) &&
           ip(QString("link set %1 up").arg(nameThere));
}

} // namespace MeshpadTest
