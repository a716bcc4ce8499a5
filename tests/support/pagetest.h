#pragma once

#include "support/test.h"

#include <regex>

/// What was warned of since the last call of this, "text|function" in each line.
inline std::string warned(LogCapture& log)
{
    static const std::regex place(R"((?:warning|error)\|(.*) \n //\w+\.cpp:(\w+)\(\))");
    std::string lines;
    std::smatch parts;
    for (const std::string& line : log.take()) {
        if (std::regex_match(line, parts, place)) {
            lines += (lines.empty() ? "" : "\n") + parts.format("$1|$2");
        }
    }
    return lines;
}

/// Delivers all events, also those that events cause, and ends what is to be deleted.
inline void settleEvents()
{
    QApplication::processEvents();
    QApplication::processEvents();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// A page, which a test may delete, and a store that bind() gives it.
template <typename Page>
struct PageTest : ::testing::Test
{
    explicit PageTest(Page* made = new Page) : page(made) { page->setZRRuntime(&runtime); }
    ~PageTest() override { delete page; }

    void bind()
    {
        page->setSettings(&store);
        settleEvents();
    }
    /// Has something done on the store's thread, and the page what that leads to.
    void announce(const std::function<void()>& act)
    {
        runtime.call(act);
        settleEvents();
    }

    /// Controls of a type are known by their order on the page.
    template <typename Control>
    Control* control(int index = 0) const
    {
        return page->template findChildren<Control*>().at(index);
    }

    /// What was written since the last call, as "key=value key=value".
    QString written()
    {
        QStringList writes;
        for (const auto& write : std::exchange(store.kept.writes, {})) {
            writes.append(write.key + '=' + write.value.toString());
        }
        return writes.join(' ');
    }

    TestRuntime runtime;
    TestStore store;
    LogCapture log;
    QPointer<Page> page;
};
