#pragma once

#include <QtCore/qglobal.h>

#include <functional>

/// The host's runtime: owner of the one thread on which the settings store is called.
///
/// Implemented and owned by the host; it must outlive every page that was given it. The library
/// calls every operation from the GUI thread and from the runtime thread.
class Q_DECL_EXPORT IZRRuntime
{
public:
    virtual ~IZRRuntime() = default;

    /// Queues `task` to run exactly once on the runtime thread. A runtime that is stopping may
    /// instead destroy the task without running it: a caller that waits for its result then gets
    /// `std::future_error` (broken promise). `file`, `line` and `function` name the caller for the
    /// runtime's own diagnostics; the texts are literals.
    virtual void post(std::function<void()> task, const char* file, int line,
                      const char* function) = 0;

    /// Whether a page that is being bound shows the values that it reads.
    virtual bool isUiSyncEnabled() const = 0;

    /// True on the thread that runs posted tasks.
    virtual bool isInRuntimeThread() const = 0;

    /// False while the runtime refuses work: the library then skips the call without a word.
    virtual bool canInvoke(const char* file, int line, const char* function) const = 0;
};
