#pragma once

#include <QtTest/QTest>

#include <functional>
#include <optional>

/// Begins something that tells its end, waits for that, and returns what was told.
inline bool ended(const std::function<void(std::function<void(bool)> done)>& begin)
{
    std::optional<bool> result;
    begin([&result](bool done) { result = done; });
    return QTest::qWaitFor([&result] { return result.has_value(); }, 20000) && *result;
}
