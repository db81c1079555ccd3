#pragma once

#include <QtGlobal>

/// What all targets share. Include it in exactly one source of each.

/// A sanitizer's defaults, which ASAN_OPTIONS overrules: a report still has the whole stack of the
/// bad access, but keeping that of every allocation, and megabytes of freed memory, costs more than
/// the code under test.
extern "C" const char* __asan_default_options() { // NOLINT(bugprone-reserved-identifier)
    return "malloc_context_size=2:quarantine_size_mb=1:thread_local_quarantine_size_kb=64";
}

/// Log lines are expected by the thousand; formatting them is part of what is tested.
inline void dropMessages() {
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
}
