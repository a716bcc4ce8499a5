#pragma once

#include "qvspdlog/spdlogapplication.h"

#include <QtCore/QString>

#include <memory>

namespace mivohost {

/// The process's log. Any thread.
inline std::shared_ptr<spdlog::logger> hostLog()
{
    return QV::SpdlogApplication::instance().logger();
}

/// A text from outside as one line: a replacement character stands for what does not print. Any
/// thread.
inline QString printable(QString text)
{
    for (QChar& each : text) {
        if (!each.isPrint() && !each.isSurrogate()) {
            each = QChar::ReplacementCharacter;
        }
    }
    return text;
}

} // namespace mivohost
