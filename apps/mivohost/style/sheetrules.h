#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QHash>
#include <QtCore/QString>

#include <vector>

class QWidget;

namespace mivo::style {

/// The rules of a style sheet, found by the widgets that they are about. As a sheet of the whole
/// application they would be worked out for each of its widgets, most of which have no rule.
class SheetRules
{
public:
    SheetRules() = default;
    explicit SheetRules(const QString& sheet);

    /// Those that may hold for a widget, as a sheet for it alone: by its object name, its property
    /// "style" or its class, and the classes around it.
    QString rulesFor(const QWidget& widget) const;

private:
    struct Rule
    {
        int place;           // in the sheet
        QByteArray around;   // the class of a widget around it; empty for any
        QByteArray property; // that has this value; empty for any
        QString value;
        QString text;
    };
    using Rules = std::vector<Rule>;

    QHash<QString, Rules> m_byName;
    QHash<QString, Rules> m_byStyle;
    QHash<QByteArray, Rules> m_byClass;
};

} // namespace mivo::style
