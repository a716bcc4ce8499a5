#pragma once

#include <QtCore/QString>

#include <ostream>

/// How GoogleTest prints a text.
inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}
