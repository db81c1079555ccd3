#include "tools/demo_producer/ShutdownSignals.h"

#include <QCoreApplication>
#include <QMetaObject>

#include <windows.h>

namespace {

std::function<void()> quitFunction;

/// The system calls this on a thread of its own.
BOOL WINAPI onConsoleEvent(DWORD) {
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [] { quitFunction(); }, Qt::QueuedConnection);
    return TRUE;
}

} // namespace

void onShutdownRequest(std::function<void()> quit) {
    quitFunction = std::move(quit);
    SetConsoleCtrlHandler(onConsoleEvent, TRUE);
}
