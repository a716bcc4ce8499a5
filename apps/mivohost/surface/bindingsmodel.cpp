#include "surface/bindingsmodel.h"

#include "base/hosttext.h"
#include "peripherals/peripherals.h"
#include "surface/actiontext.h"

#include <mivosettingswidgets/controls.h>
#include <mivosettingswidgets/shortcutmgr.h>
#include <mivosettingswidgets/shortcuttable.h>

#include <QtCore/QBuffer>
#include <QtCore/QDateTime>
#include <QtCore/QEventLoop>
#include <QtCore/QLocale>
#include <QtCore/QStringList>
#include <QtGui/QIcon>
#include <QtGui/QPdfWriter>
#include <QtGui/QTextDocument>

#include <algorithm>

namespace mivohost {

namespace {

constexpr int actionColumn = 0;

int columnOf(EnumPeripheralShortCutType kind)
{
    return kind + 1;
}

} // namespace

void BindingsModel::fill(const mivo::settings::ShortCutMgr& manager, Peripherals& peripherals)
{
    beginResetModel();
    m_rows.clear();
    m_rowOf.clear();
    m_uses.clear();
    for (const auto& action : mivo::settings::peripheralActions) {
        rowOf(std::string(action.path));
    }
    for (const STShortCutItem& item : manager.linkShortCutInfo().shortCutInfoList) {
        add(columnOf(PeripheralKeyboard), item.type, item.path, item.shortCutStr);
    }
    const auto addAll = [this](EnumPeripheralShortCutType kind, const auto& service) {
        for (const auto& info : service.bindings()) {
            add(columnOf(kind), info.type, info.oprKey, info.keyValue);
        }
    };
    addAll(PeripheralMidi, peripherals.midi());
    addAll(PeripheralDmx, peripherals.dmx());
    addAll(PeripheralOsc, peripherals.osc());
    endResetModel();
}

BindingsModel::Row& BindingsModel::rowOf(const std::string& path)
{
    const auto [place, isNew] = m_rowOf.try_emplace(path, m_rows.size());
    if (isNew) {
        m_rows.push_back({path, {}});
    }
    return m_rows[place->second];
}

void BindingsModel::add(int column, int type, const std::string& path, const std::string& control)
{
    rowOf(actionPath(type, path)).controls[static_cast<std::size_t>(column)].push_back(control);
    ++m_uses[{column, control}];
}

QString BindingsModel::conflictOf(const Control& control) const
{
    if (control.first == columnOf(PeripheralKeyboard)
        && mivo::settings::isReservedKeySequence(QString::fromStdString(control.second))) {
        return hostText("FoundReserved");
    }
    return m_uses.at(control) > 1 ? hostText("BoundTwice") : QString();
}

int BindingsModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int BindingsModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : columns;
}

const std::vector<std::string>& BindingsModel::controlsOf(const QModelIndex& index) const
{
    return m_rows[static_cast<std::size_t>(index.row())]
        .controls[static_cast<std::size_t>(index.column())];
}

QStringList BindingsModel::conflictsOf(const QModelIndex& index) const
{
    QStringList conflicts;
    for (const std::string& control : controlsOf(index)) {
        const QString conflict = conflictOf({index.column(), control});
        if (!conflict.isEmpty()) {
            conflicts.append(conflict.arg(QString::fromStdString(control)));
        }
    }
    return conflicts;
}

QVariant BindingsModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid()) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole: { // which sorting asks for very often
        if (index.column() == actionColumn) {
            return actionText(m_rows[static_cast<std::size_t>(index.row())].path);
        }
        QStringList texts;
        for (const std::string& control : controlsOf(index)) {
            texts.append(QString::fromStdString(control));
        }
        return texts.join(QStringLiteral(", "));
    }
    case Qt::DecorationRole:
        return conflictsOf(index).isEmpty()
                   ? QVariant()
                   : QIcon(QStringLiteral(":/mivo/style/icons/warning.svg"));
    case Qt::ToolTipRole:
        return mivo::settings::tipOf(conflictsOf(index).join('\n'));
    case conflictRole:
        return conflictsOf(index).join('\n');
    default:
        return {};
    }
}

QVariant BindingsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return {};
    }
    return section == actionColumn                   ? hostText("MonitorAction")
           : section == columnOf(PeripheralKeyboard) ? hostText("Keys")
                                                     : kindNames()[section - 1];
}

// In the C locale nothing is compared as people do it.
BindingsFilter::BindingsFilter()
    : m_collator(QLocale().language() == QLocale::C ? QLocale(QLocale::English) : QLocale())
{
    m_collator.setNumericMode(true);
    m_collator.setCaseSensitivity(Qt::CaseInsensitive);
}

void BindingsFilter::setText(const QString& text)
{
    m_text = searchText(text.trimmed());
    invalidateFilter();
}

bool BindingsFilter::filterAcceptsRow(int row, const QModelIndex& parent) const
{
    for (int column = 0; column < BindingsModel::columns; ++column) {
        const QModelIndex index = sourceModel()->index(row, column, parent);
        if (searchText(index.data().toString()).contains(m_text)) {
            return true;
        }
    }
    return false;
}

bool BindingsFilter::lessThan(const QModelIndex& left, const QModelIndex& right) const
{
    const QString one = left.data().toString();
    const QString other = right.data().toString();
    return one.isEmpty() || other.isEmpty() ? other.isEmpty() && !one.isEmpty()
                                            : m_collator.compare(one, other) < 0;
}

QString bindingsHtml(const QAbstractItemModel& model)
{
    const QString title = hostText("BindingSheet").toHtmlEscaped();
    QString html =
        QStringLiteral("<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><title>%1</title>"
                       "</head>\n<body style=\"font-family: sans-serif\"><h2>%1</h2>\n<p>%2</p>\n"
                       "<table border=\"1\" cellspacing=\"0\" cellpadding=\"3\">\n<thead><tr>")
            .arg(title, QLocale()
                            .toString(QDateTime::currentDateTime(), QLocale::ShortFormat)
                            .toHtmlEscaped());
    for (int column = 0; column < model.columnCount(); ++column) {
        html += "<th align=\"left\">"
                + model.headerData(column, Qt::Horizontal).toString().toHtmlEscaped() + "</th>";
    }
    html += QStringLiteral("</tr></thead>\n");
    for (int row = 0; row < model.rowCount(); ++row) {
        html += QStringLiteral("<tr>");
        for (int column = 0; column < model.columnCount(); ++column) {
            const QModelIndex index = model.index(row, column);
            const QString conflict = index.data(BindingsModel::conflictRole).toString();
            html += "<td>" + index.data().toString().toHtmlEscaped();
            if (!conflict.isEmpty()) {
                html += "<br><b>" + conflict.toHtmlEscaped() + "</b>";
            }
            html += QStringLiteral("</td>");
        }
        html += QStringLiteral("</tr>\n");
    }
    return html + QStringLiteral("</table></body></html>\n");
}

QByteArray pdfOf(const QString& html, const QString& title)
{
    const QEventLoop timers; // which a layout starts, on any thread
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&buffer);
        writer.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait,
                                         QMarginsF(12, 12, 12, 12), QPageLayout::Millimeter));
        writer.setTitle(title);
        QTextDocument document;
        document.setDefaultFont(QFont(QStringLiteral("Noto Sans"), 8));
        document.setHtml(html);
        document.print(&writer); // which numbers the pages
    }
    return buffer.data();
}

} // namespace mivohost
