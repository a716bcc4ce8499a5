#pragma once

#include <mivostyle/style.h>

#include <QtGui/QFont>
#include <QtGui/QPalette>
#include <QtWidgets/QApplication>

#include <optional>

/// Gives the application a look, or takes it away again.
inline void useLook(std::optional<mivo::style::Look> look)
{
    static const QFont plain = QApplication::font();
    if (look) {
        mivo::style::apply(*look);
    } else {
        QApplication::setStyle(QStringLiteral("fusion"));
        QApplication::setFont(plain);
        QApplication::setPalette(QPalette());
    }
}
