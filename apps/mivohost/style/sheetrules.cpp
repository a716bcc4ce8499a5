#include "sheetrules.h"

#include "looknames.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QVariant>
#include <QtWidgets/QWidget>

#include <algorithm>

namespace mivo::style {

namespace {

/// A class as the meta-object names it.
QByteArray className(QString inSheet)
{
    return inSheet.replace(QLatin1String("--"), QLatin1String("::")).toLatin1();
}

} // namespace

SheetRules::SheetRules(const QString& sheet)
{
    static const QRegularExpression comment(QStringLiteral("/\\*.*?\\*/"),
                                            QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression rule(QStringLiteral("([^{}]+)(\\{[^}]*\\})"));
    // What is around it, and of the widget that it is about the type, and the name or a property.
    static const QRegularExpression selector(QStringLiteral(
        "^(?:([\\w-]+) )?([\\w-]*?)(?:#(\\w+)|\\[(\\w+)=\"(\\w+)\"\\])?(?:[:\\[].*)?$"));
    const QString bare = QString(sheet).remove(comment);
    int place = 0;
    for (auto all = rule.globalMatch(bare); all.hasNext();) {
        const auto found = all.next();
        const auto selectors = found.captured(1).split(',');
        for (const QString& each : selectors) {
            const QString text = each.simplified();
            const auto parts = selector.match(text);
            const QString property = parts.captured(4);
            Rule entry{place++, className(parts.captured(1)), {}, {}, text + found.captured(2)};
            if (!parts.captured(3).isEmpty()) {
                m_byName[parts.captured(3)].push_back(entry);
            } else if (property == QLatin1String("style")) {
                m_byStyle[parts.captured(5)].push_back(entry);
            } else {
                entry.property = property.toLatin1();
                entry.value = parts.captured(5);
                m_byClass[className(parts.captured(2))].push_back(entry);
            }
        }
    }
}

QString SheetRules::rulesFor(const QWidget& widget) const
{
    std::vector<const Rule*> found;
    const auto add = [&](const auto& rules, const auto& key) {
        const auto entry = rules.constFind(key);
        if (entry == rules.constEnd()) {
            return;
        }
        for (const Rule& rule : *entry) {
            if ((rule.around.isEmpty() || isWithin(widget, rule.around))
                && (rule.property.isEmpty()
                    || widget.property(rule.property.constData()).toString() == rule.value)) {
                found.push_back(&rule);
            }
        }
    };
    if (!widget.objectName().isEmpty()) {
        add(m_byName, widget.objectName());
    }
    if (const QString style = styleOf(&widget); !style.isEmpty()) {
        add(m_byStyle, style);
    }
    for (const QMetaObject* type = widget.metaObject(); type != nullptr;
         type = type->superClass()) {
        const char* name = type->className();
        add(m_byClass, QByteArray::fromRawData(name, static_cast<int>(qstrlen(name))));
    }
    std::sort(found.begin(), found.end(),
              [](const Rule* one, const Rule* other) { return one->place < other->place; });
    QString sheet;
    for (const Rule* rule : found) {
        sheet += rule->text;
    }
    return sheet;
}

} // namespace mivo::style
