#pragma once

#include <QtCore/QString>

#include <ostream>

/// How GoogleTest prints a text, and what stands behind << of an expectation.
inline std::ostream& operator<<(std::ostream& out, const QString& text)
{
    return out << text.toStdString();
}
