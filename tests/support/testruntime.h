#pragma once

#include "mivohostkit/runtimethread.h"

#include <atomic>
#include <mutex>

/// The reference host's runtime, with answers that a test chooses and a record of what is posted.
class TestRuntime : public mivohost::RuntimeThread
{
public:
    struct Posted
    {
        std::string file;
        int line;
        std::string function;
    };

    ~TestRuntime() override { stop(); }

    std::atomic<bool> uiSync{true};
    std::atomic<bool> refuses{false};
    std::atomic<bool> drops{false}; ///< every task but call()'s, as when it stops meanwhile

    void post(std::function<void()> task, const char* file, int line, const char* function) override
    {
        if (std::string(function) != "call") {
            const std::lock_guard lock(m_postedMutex);
            m_posted.push_back({file, line, function});
            if (drops) {
                return;
            }
        }
        RuntimeThread::post(std::move(task), file, line, function);
    }
    bool isUiSyncEnabled() const override { return uiSync; }
    bool canInvoke(const char* file, int line, const char* function) const override
    {
        return !refuses && RuntimeThread::canInvoke(file, line, function);
    }

    /// What was posted since the last call of this, but for call().
    std::vector<Posted> takePosted()
    {
        const std::lock_guard lock(m_postedMutex);
        return std::exchange(m_posted, {});
    }

    std::thread::id thread()
    {
        return call([] { return std::this_thread::get_id(); });
    }

private:
    std::mutex m_postedMutex;
    std::vector<Posted> m_posted;
};
