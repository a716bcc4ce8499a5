#include "qvspdlog/spdlogapplication.h"

#include <spdlog/sinks/stdout_sinks.h>

#include <utility>

namespace QV {

SpdlogBase::SpdlogBase(std::shared_ptr<spdlog::logger> first)
    : m_first(std::move(first)), m_logger(m_first)
{}

std::shared_ptr<spdlog::logger> SpdlogBase::logger() const
{
    const std::lock_guard lock(m_mutex);
    return m_logger;
}

void SpdlogBase::setLogger(std::shared_ptr<spdlog::logger> logger)
{
    const std::lock_guard lock(m_mutex);
    m_logger = logger ? std::move(logger) : m_first;
}

SpdlogApplication::SpdlogApplication()
    : SpdlogBase(
        std::make_shared<spdlog::logger>("mivo", std::make_shared<spdlog::sinks::stderr_sink_mt>()))
{}

SpdlogApplication& SpdlogApplication::instance()
{
    static SpdlogApplication application;
    return application;
}

} // namespace QV
