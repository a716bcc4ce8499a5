#include "support/logcapture.h"

#include "qvspdlog/spdlogapplication.h"

#include <spdlog/sinks/base_sink.h>

#include <regex>

class LogCapture::Sink : public spdlog::sinks::base_sink<std::mutex>
{
public:
    std::vector<std::string> lines()
    {
        const std::lock_guard lock(mutex_);
        return m_lines;
    }

    void clear()
    {
        const std::lock_guard lock(mutex_);
        m_lines.clear();
    }

protected:
    void sink_it_(const spdlog::details::log_msg& message) override
    {
        const auto level = spdlog::level::to_string_view(message.level);
        m_lines.push_back(std::string(level.data(), level.size()) + '|'
                          + std::string(message.payload.data(), message.payload.size()));
    }
    void flush_() override {}

private:
    std::vector<std::string> m_lines;
};

LogCapture::LogCapture() : m_sink(std::make_shared<Sink>())
{
    QV::SpdlogApplication::instance().setLogger(std::make_shared<spdlog::logger>("test", m_sink));
}

LogCapture::~LogCapture()
{
    QV::SpdlogApplication::instance().setLogger(nullptr);
}

std::vector<std::string> LogCapture::lines() const
{
    return m_sink->lines();
}

testing::AssertionResult LogCapture::hasOnly(const std::string& start) const
{
    const auto all = lines();
    return testing::AssertionResult(all.size() == 1 && all[0].rfind(start, 0) == 0)
           << testing::PrintToString(all);
}

std::vector<std::string> LogCapture::take()
{
    static const std::regex sourceLine("#[1-9][0-9]*\\.$");
    auto lines = m_sink->lines();
    for (std::string& line : lines) {
        line = std::regex_replace(line, sourceLine, "");
    }
    clear();
    return lines;
}

void LogCapture::clear()
{
    m_sink->clear();
}
