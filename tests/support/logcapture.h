#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

/// Takes over the process's log while it lives. Each entry is "level|message".
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();

    std::vector<std::string> lines() const;
    /// Whether there is one line, which begins like that.
    testing::AssertionResult hasOnly(const std::string& start) const;
    /// Those since the last call, without the number of the source line that ends a warning.
    std::vector<std::string> take();
    void clear();

private:
    class Sink;
    std::shared_ptr<Sink> m_sink;
};
