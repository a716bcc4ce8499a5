#pragma once

#include "qvspdlog/spdlogapplication.h"

#include <memory>

namespace mivohost {

/// The process's log. Any thread.
inline std::shared_ptr<spdlog::logger> hostLog()
{
    return QV::SpdlogApplication::instance().logger();
}

} // namespace mivohost
