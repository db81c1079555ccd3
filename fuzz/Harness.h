#pragma once

#include <QtGlobal>

/// Shared by all targets; each includes it in exactly one source file.

/// Defaults of the address sanitizer, which ASAN_OPTIONS overrides. Full allocation stacks and a
/// large quarantine would cost more time than the code under test.
extern "C" const char* __asan_default_options() { // NOLINT(bugprone-reserved-identifier)
    return "malloc_context_size=2:quarantine_size_mb=1:thread_local_quarantine_size_kb=64";
}

/// Drops the formatted log lines, which most inputs cause.
inline void dropMessages() {
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
}
