#include "tests/support/PeerNamespace.h"

#include <QByteArrayList>
#include <QCoreApplication>
#include <QEvent>

#include <condition_variable>
#include <mutex>
#include <vector>

#include <sched.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace MeshpadTest {

namespace {

/// As a child of the calling thread, and so in its namespace.
bool runIp(const QString& arguments) {
    QByteArrayList words = arguments.toLocal8Bit().split(' ');
    std::vector<char*> argv{const_cast<char*>("ip")};
    for (QByteArray& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    pid_t child = 0;
    int status = 0;
    return posix_spawnp(&child, "ip", nullptr, nullptr, argv.data(), environ) == 0 &&
           waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace

/// Runs what it is given on its thread. Handed over under a standard mutex, which the thread
/// sanitizer understands; Qt's own library is a closed book to it.
class PeerNamespace::Worker : public QObject {
public:
    void run(const std::function<void()>& work) {
        std::unique_lock lock(mutex_);
        work_ = &work;
        QCoreApplication::postEvent(this, new QEvent(QEvent::User));
        done_.wait(lock, [this] { return !work_; });
    }

protected:
    void customEvent(QEvent*) override {
        const std::scoped_lock lock(mutex_);
        (*work_)();
        work_ = nullptr;
        done_.notify_one();
    }

private:
    std::mutex mutex_;
    std::condition_variable done_;
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
    bool ok = false;
    run([&] { ok = runIp(arguments); });
    return ok;
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
