#include "support/logcapture.h"

#include "qvspdlog/spdlogapplication.h"

#include <spdlog/pattern_formatter.h>

#include <algorithm>
#include <regex>

LogCapture::LogCapture()
{
    clear();
}

LogCapture::~LogCapture()
{
    QV::SpdlogApplication::instance().setLogger(nullptr);
}

std::vector<std::string> LogCapture::lines() const
{
    return m_sink->last_formatted();
}

std::ptrdiff_t LogCapture::count(const std::string& part) const
{
    const auto all = lines();
    return std::count_if(all.begin(), all.end(), [&part](const std::string& line) {
        return line.find(part) != std::string::npos;
    });
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
    auto all = lines();
    for (std::string& line : all) {
        line = std::regex_replace(line, sourceLine, "");
    }
    clear();
    return all;
}

void LogCapture::clear()
{
    m_sink = std::make_shared<spdlog::sinks::ringbuffer_sink_mt>(1000);
    m_sink->set_formatter(
        std::make_unique<spdlog::pattern_formatter>("%l|%v", spdlog::pattern_time_type::local, ""));
    auto& application = QV::SpdlogApplication::instance();
    const auto level = application.logger()->level(); // as a test has set it
    application.setLogger(std::make_shared<spdlog::logger>("test", m_sink));
    application.logger()->set_level(level);
}
