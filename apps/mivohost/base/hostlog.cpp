#include "base/hostlog.h"

#include <QtCore/QFile>
#include <QtCore/QMetaObject>
#include <QtCore/QObject>

#include <spdlog/sinks/base_sink.h>
#include <spdlog/sinks/dist_sink.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <cstdio>
#include <memory>
#include <mutex>
#include <string>

#ifdef Q_OS_UNIX
#include <fcntl.h>
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

/// Where nobody reads any more, which some systems tell, the other sinks go on.
class ConsoleSink : public spdlog::sinks::stderr_sink_mt
{
public:
    void log(const spdlog::details::log_msg& message) override
    {
        try {
            spdlog::sinks::stderr_sink_mt::log(message);
        } catch (const spdlog::spdlog_ex&) {
        }
    }
};

struct Sinks
{
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

void startLog(const QString& file)
{
    const auto console = std::make_shared<ConsoleSink>();
    console->set_level(file.isEmpty() ? spdlog::level::warn : spdlog::level::info);
    sinks().all->add_sink(console);
    auto logger = std::make_shared<spdlog::logger>("mivohost", sinks().all);
    logger->set_pattern("%H:%M:%S.%e %l %v");
    logger->flush_on(spdlog::level::info);
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
        }
    }
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
    return whole.size() <= longest ? text : whole.left(longest).toStdString() + "...";
}

} // namespace mivohost
