#pragma once

#include <gtest/gtest.h>

#include <spdlog/sinks/ringbuffer_sink.h>

#include <memory>
#include <string>
#include <vector>

/// Takes over the process's log while it lives, its last 1000 entries: each is "level|message".
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();

    std::vector<std::string> lines() const;
    /// How many lines have `part` in them.
    std::ptrdiff_t count(const std::string& part) const;
    /// Whether there is one line, which begins like that.
    testing::AssertionResult hasOnly(const std::string& start) const;
    /// Those since the last call, without the number of the source line that ends a warning.
    std::vector<std::string> take();
    void clear();

private:
    std::shared_ptr<spdlog::sinks::ringbuffer_sink_mt> m_sink;
};
