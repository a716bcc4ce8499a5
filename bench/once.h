#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>

#include <cstdio>
#include <malloc.h>

/// What is measured once in a process of its own, whose heap nothing else has grown.
namespace once {

/// A figure of /proc/self/status in KiB, such as "VmRSS" or "VmHWM".
inline long kibibytesOf(const QByteArray& name)
{
    QFile status("/proc/self/status");
    status.open(QIODevice::ReadOnly);
    const auto lines = status.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith(name + ':')) {
            return line.mid(name.size() + 1).trimmed().split(' ').first().toLong();
        }
    }
    return 0;
}

/// Calls `work` and prints its microseconds, and by how many KiB the process was larger at its peak
/// than before. What `work` returns ends after that.
template <typename Work>
int measure(Work work)
{
    malloc_trim(0);
    QFile peak("/proc/self/clear_refs"); // 5: the peak begins anew
    if (peak.open(QIODevice::WriteOnly)) {
        peak.write("5");
        peak.close();
    }
    const long before = kibibytesOf("VmRSS");
    QElapsedTimer timer;
    timer.start();
    auto made = work();
    const double microseconds = 1e-3 * static_cast<double>(timer.nsecsElapsed());
    std::printf("%.1f %ld\n", microseconds, kibibytesOf("VmHWM") - before);
    std::fflush(stdout);
    return 0;
}

} // namespace once
