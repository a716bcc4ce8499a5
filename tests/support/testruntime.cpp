#include "support/testruntime.h"

#include <utility>

void TestRuntime::post(std::function<void()> task, const char* file, int line, const char* function)
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

bool TestRuntime::canInvoke(const char* file, int line, const char* function) const
{
    return !refuses && RuntimeThread::canInvoke(file, line, function);
}

std::vector<TestRuntime::Posted> TestRuntime::takePosted()
{
    const std::lock_guard lock(m_postedMutex);
    return std::exchange(m_posted, {});
}

std::thread::id TestRuntime::thread()
{
    return call([] { return std::this_thread::get_id(); });
}
