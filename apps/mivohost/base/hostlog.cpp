#include "base/hostlog.h"

#include <QtCore/QFile>
#include <QtCore/QMetaObject>
#include <QtCore/QObject>

#include <spdlog/async.h>
#include <spdlog/sinks/base_sink.h>
#include <spdlog/sinks/dist_sink.h>
#include <spdlog/sinks/rotating_file_sink.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#else
#include <QtCore/qt_windows.h>

#include <io.h>
#endif

namespace mivohost {

namespace {

class ViewSink : public spdlog::sinks::base_sink<std::mutex>
{
public:
    explicit ViewSink(QObject* view) : m_view(view) {}

protected:
    void sink_it_(const spdlog::details::log_msg& message) override
    {
        spdlog::memory_buf_t line;
        formatter_->format(message, line);
        const QString text =
            QString::fromUtf8(line.data(), static_cast<int>(line.size())).trimmed();
        QMetaObject::invokeMethod(m_view, "appendPlainText", Qt::QueuedConnection,
                                  Q_ARG(QString, text));
    }

    void flush_() override {}

private:
    QObject* m_view;
};

/// Writes to the console, on a thread of its own; not by stdio, for whose locks exit() waits.
class StandardError : public spdlog::sinks::base_sink<std::mutex>
{
public:
    std::atomic<bool> isFlushed{false};

protected:
    void sink_it_(const spdlog::details::log_msg& message) override
    {
        spdlog::memory_buf_t line;
        formatter_->format(message, line);
#ifdef Q_OS_UNIX
        [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, line.data(), line.size());
#else
        DWORD written = 0;
        WriteFile(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stderr))), line.data(),
                  static_cast<DWORD>(line.size()), &written, nullptr);
#endif
    }

    void flush_() override
    {
        isFlushed = true;
    }
};

/// A console that is stopped, by Ctrl+S or a selection in it, takes nothing until it goes on, and
/// nobody waits for it: of what comes meanwhile the oldest lines are dropped.
class ConsoleSink : public spdlog::sinks::sink
{
public:
    /// Null before there is one, and at the end.
    static ConsoleSink* inForce() { return s_inForce; }
    static void putInForce(ConsoleSink* console) { s_inForce = console; }

    void log(const spdlog::details::log_msg& message) override
    {
        m_writer->log(message.time, message.source, message.level, message.payload);
    }
    void log(spdlog::level::level_enum level, const std::string& line)
    {
        m_writer->log(level, line);
    }
    void flush() override {} // each line is
    void set_pattern(const std::string& pattern) override { m_writer->set_pattern(pattern); }
    void set_formatter(std::unique_ptr<spdlog::formatter> formatter) override
    {
        m_writer->set_formatter(std::move(formatter));
    }

    /// Waits until all is written, but not for a console that is stopped.
    void finish()
    {
        m_output->isFlushed = false;
        m_writer->flush();
        for (int waited = 0; !m_output->isFlushed && waited < 1000; waited += 10) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }

private:
    /// Never destroyed, as that waits for the console.
    static std::shared_ptr<spdlog::details::thread_pool>& pool()
    {
        static auto& only =
            *new std::shared_ptr(std::make_shared<spdlog::details::thread_pool>(1000, 1));
        return only;
    }

    static inline std::atomic<ConsoleSink*> s_inForce{nullptr};

    std::shared_ptr<StandardError> m_output = std::make_shared<StandardError>();
    std::shared_ptr<spdlog::async_logger> m_writer = std::make_shared<spdlog::async_logger>(
        "mivohost", m_output, pool(), spdlog::async_overflow_policy::overrun_oldest);
};

struct Sinks
{
    Sinks() = default;
    /// Where threads still run: on Windows they have ended when the libraries' objects go.
    ~Sinks()
    {
        if (auto* console = ConsoleSink::inForce()) {
            ConsoleSink::putInForce(nullptr);
            console->finish();
        }
    }
    Q_DISABLE_COPY_MOVE(Sinks)

    std::shared_ptr<spdlog::sinks::dist_sink_mt> all =
        std::make_shared<spdlog::sinks::dist_sink_mt>();
    std::shared_ptr<ViewSink> view;
};

Sinks& sinks()
{
    static Sinks instance;
    return instance;
}

/// A program that is started does not get this file.
void keepFromChildren(std::FILE* stream)
{
#ifdef Q_OS_UNIX
    ::fcntl(::fileno(stream), F_SETFD, FD_CLOEXEC);
#else
    SetHandleInformation(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream))),
                         HANDLE_FLAG_INHERIT, 0);
#endif
}

// A name as the library wants it, which depends on how it was built.
[[maybe_unused]] void setName(std::string& name, const QString& path)
{
    name = QFile::encodeName(path).toStdString();
}

[[maybe_unused]] void setName(std::wstring& name, const QString& path)
{
    name = path.toStdWString();
}

} // namespace

QString startLog(const QString& file)
{
    const auto console = std::make_shared<ConsoleSink>();
    console->set_level(file.isEmpty() ? spdlog::level::warn : spdlog::level::info);
    sinks().all->add_sink(console);
    auto logger = std::make_shared<spdlog::logger>("mivohost", sinks().all);
    logger->set_pattern("%H:%M:%S.%e %l %v");
    logger->flush_on(spdlog::level::info);
    ConsoleSink::putInForce(console.get());
    QV::SpdlogApplication::instance().setLogger(logger);
    if (!file.isEmpty()) {
        try {
            spdlog::filename_t name;
            setName(name, file);
            spdlog::file_event_handlers handlers;
            handlers.after_open = [file](const spdlog::filename_t& /*opened*/, std::FILE* stream) {
                QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
                keepFromChildren(stream);
            };
            const auto kept = std::make_shared<spdlog::sinks::rotating_file_sink_mt>(
                name, 1 << 20, 5, false, handlers);
            kept->set_pattern("%Y-%m-%d %H:%M:%S.%e %l %v");
            sinks().all->add_sink(kept);
        } catch (const spdlog::spdlog_ex& error) {
            logger->warn("no log file: {}", error.what());
            return QString::fromLocal8Bit(error.what()).section(QLatin1String(": "), -1);
        }
    }
    return {};
}

void finishLog()
{
    hostLog()->flush();
    if (auto* console = ConsoleSink::inForce()) {
        console->finish();
    }
}

bool logToConsole(spdlog::level::level_enum level, const QString& line)
{
    auto* console = ConsoleSink::inForce();
    if (console != nullptr) {
        console->log(level, line.toStdString());
    }
    return console != nullptr;
}

void attachLogView(QObject* view)
{
    sinks().view = std::make_shared<ViewSink>(view);
    sinks().view->set_pattern("%H:%M:%S  %v");
    sinks().all->add_sink(sinks().view);
}

void detachLogView()
{
    sinks().all->remove_sink(sinks().view);
    sinks().view.reset();
}

std::string shortened(const std::string& text)
{
    constexpr int longest = 60; // characters
    const QString whole = QString::fromStdString(text);
    return printable(whole.left(longest)).toStdString() + (whole.size() <= longest ? "" : "...");
}

} // namespace mivohost
