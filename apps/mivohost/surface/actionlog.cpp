#include "surface/actionlog.h"

#include "base/hostlog.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace mivohost {

namespace {

constexpr int pause = 100;             // ms
constexpr double mostLines = 50;       // without a pause
constexpr double linesPerMs = 1 / 3e3; // regained with time
constexpr std::size_t mostNames = 4;   // in a line of several actions

std::string times(int count)
{
    return count == 1 ? std::string() : fmt::format(" ({} times)", count);
}

} // namespace

ActionLog::ActionLog() : m_lines(mostLines)
{
    m_written.start();
    m_pause.setInterval(pause);
    QObject::connect(&m_pause, &QTimer::timeout, &m_pause, [this] { write(); });
}

void ActionLog::add(const std::string& name, const std::string& control)
{
    Entry& entry = m_waiting[name];
    ++entry.count;
    entry.control = control;
    if (!m_pause.isActive()) {
        m_pause.start();
        write();
    }
}

void ActionLog::write()
{
    m_lines = std::min(mostLines, m_lines + static_cast<double>(m_written.restart()) * linesPerMs);
    if (m_waiting.empty()) {
        m_pause.stop();
        return;
    }
    if (m_lines < 1) {
        return;
    }
    const auto waiting = std::exchange(m_waiting, {});
    std::vector<std::pair<int, std::string>> texts; // the rarest first
    for (const auto& [name, entry] : waiting) {
        texts.emplace_back(entry.count,
                           name + (entry.control.empty() ? "" : " by " + shortened(entry.control))
                               + times(entry.count));
    }
    if (m_lines >= static_cast<double>(texts.size())) {
        m_lines -= static_cast<double>(texts.size());
        for (const auto& text : texts) {
            hostLog()->info(text.second);
        }
        return;
    }
    m_lines -= 1;
    std::sort(texts.begin(), texts.end());
    std::string line;
    int others = 0;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (i < mostNames) {
            line += (i == 0 ? "" : "; ") + texts[i].second;
        } else {
            others += texts[i].first;
        }
    }
    if (others > 0) {
        line += fmt::format("; {} other actions{}", texts.size() - mostNames, times(others));
    }
    hostLog()->info(line);
}

} // namespace mivohost
