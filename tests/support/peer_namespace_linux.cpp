#include "tests/support/PeerNamespace.h"

#include <QProcess>

#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace MeshpadTest {

namespace {

bool runIp(const QString& arguments) {
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start("ip", arguments.split(' ', Qt::SkipEmptyParts));
    return process.waitForFinished() && process.exitStatus() == QProcess::NormalExit &&
           process.exitCode() == 0;
}

} // namespace

PeerNamespace::PeerNamespace() : worker_(std::make_unique<QObject>()) {
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
    QMetaObject::invokeMethod(worker_.get(), work, Qt::BlockingQueuedConnection);
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
