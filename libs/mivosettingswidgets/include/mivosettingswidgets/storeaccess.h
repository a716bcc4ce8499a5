#pragma once

#include "mivohostapi/izrruntime.h"
#include "qvspdlog/spdlogapplication.h"

#include <fmt/format.h>

#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>

namespace mivo::settings {

/// Where a call stands. As the default of a parameter it takes the caller's own function, file and
/// line; the literal name of another function takes its place where that is wanted. All texts are
/// literals.
struct CallSite
{
    /// As said above.
    // NOLINTNEXTLINE(google-explicit-constructor)
    CallSite(const char* functionName = __builtin_FUNCTION(),
             const char* fileName = __builtin_FILE(), int lineNumber = __builtin_LINE())
        : file(fileName), line(lineNumber), function(functionName)
    {}

    const char* file;     ///< path as compiled
    int line;             ///< from 1 on
    const char* function; ///< without arguments
};

/// What follows the last slash of either kind.
constexpr std::string_view sourceBaseName(std::string_view path)
{
    const auto slash = path.find_last_of("\\/");
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

/// The library's one log line: the message, then on a line of its own " //file:function()#line.".
/// `format` has a `{}` for each of `args`. Any thread.
template <typename... Args>
void logAt(spdlog::level::level_enum level, const CallSite& site,
           fmt::format_string<Args...> format, Args&&... args)
{
    QV::SpdlogApplication::instance().logger()->log(
        level, "{} \n //{}:{}()#{}.", fmt::format(format, std::forward<Args>(args)...),
        sourceBaseName(site.file), site.function, site.line);
}

/// The same at level warn, which nearly all of them have.
template <typename... Args>
void warn(const CallSite& site, fmt::format_string<Args...> format, Args&&... args)
{
    logAt(spdlog::level::warn, site, format, std::forward<Args>(args)...);
}

/// Calls `callable(args...)` on the runtime thread and returns its result; a runtime that refuses
/// gives a value-initialised one. Blocks the caller unless it is on the runtime thread itself.
/// A runtime that drops the task instead of running it makes this throw std::future_error.
template <typename Callable, typename... Args>
auto callInRuntime(IZRRuntime* runtime, const char* file, int line, const char* function,
                   Callable&& callable, Args&&... args)
{
    auto bound = std::bind(std::forward<Callable>(callable), std::forward<Args>(args)...);
    using Result = std::decay_t<decltype(bound())>;

    if (!runtime->canInvoke(file, line, function)) {
        return Result();
    }
    if (runtime->isInRuntimeThread()) {
        return static_cast<Result>(bound());
    }
    auto task = std::make_shared<std::packaged_task<Result()>>(std::move(bound));
    auto result = task->get_future();
    // The queue is to hold the only reference, so that a dropped task breaks its promise.
    runtime->post([task = std::move(task)] { (*task)(); }, file, line, function);
    return result.get();
}

/// What a getter of the store returns; nothing without a store, and where the runtime refuses.
template <typename Getter, typename Store>
auto readIfThere(IZRRuntime* runtime, const CallSite& site, Getter getter, Store* store)
{
    using Value = std::optional<std::decay_t<std::invoke_result_t<Getter, Store*>>>;
    if (store == nullptr) {
        return Value();
    }
    return callInRuntime(runtime, site.file, site.line, site.function,
                         [getter, store] { return Value(std::invoke(getter, store)); });
}

} // namespace mivo::settings
