#pragma once

#include "qvspdlog/export.h"

#include <spdlog/logger.h>

#include <memory>
#include <mutex>

namespace QV {

/// Holder of a logger. Safe on every thread.
class QVSPDLOG_EXPORT SpdlogBase
{
public:
    virtual ~SpdlogBase() = default;

    /// The logger that is in force; never null.
    std::shared_ptr<spdlog::logger> logger() const;

    /// Replaces the logger; null restores the first one, which writes to the standard error.
    void setLogger(std::shared_ptr<spdlog::logger> logger);

protected:
    /// `first`, not null, is in force until setLogger().
    explicit SpdlogBase(std::shared_ptr<spdlog::logger> first);

private:
    mutable std::mutex m_mutex;
    std::shared_ptr<spdlog::logger> m_first;
    std::shared_ptr<spdlog::logger> m_logger;
};

/// The process-wide logger that the host hands out to its libraries.
class QVSPDLOG_EXPORT SpdlogApplication : public SpdlogBase
{
public:
    static SpdlogApplication& instance(); ///< the only one

private:
    SpdlogApplication();
};

} // namespace QV
