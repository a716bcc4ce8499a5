#include "surface/inputmodel.h"

#include "base/hosttext.h"
#include "surface/actiontext.h"

#include <QtCore/QDateTime>
#include <QtCore/QStringList>

#include <algorithm>
#include <array>
#include <iterator>

namespace mivohost {

namespace {

QString kindName(EnumPeripheralShortCutType kind)
{
    constexpr std::array names{"", "MIDI", "DMX", "OSC"};
    return QString::fromLatin1(names[kind]);
}

QString boundText(const ReceivedInput& input)
{
    if (input.action.empty()) {
        return hostText("BoundToNothing");
    }
    const QString name = actionText(input.action);
    return input.isRelease ? hostText("ActionReleased").arg(name) : name;
}

QString textOf(const ReceivedInput& input, int column)
{
    switch (column) {
    case InputModel::timeColumn:
        return QDateTime::fromMSecsSinceEpoch(input.message.time)
            .toString(QStringLiteral("hh:mm:ss.zzz"));
    case InputModel::kindColumn:
        return kindName(input.message.kind);
    case InputModel::sourceColumn:
        return input.message.source;
    case InputModel::wordsColumn:
        return input.words();
    case InputModel::levelColumn: {
        const double level = input.level();
        return level < 0 ? QString() : QStringLiteral("%1 %").arg(qRound(level * 100));
    }
    default:
        return boundText(input);
    }
}

} // namespace

void InputModel::add(std::vector<ReceivedInput>& inputs)
{
    if (inputs.size() > mostInputs) {
        const auto surplus = static_cast<std::ptrdiff_t>(inputs.size() - mostInputs);
        inputs.erase(inputs.begin(), std::next(inputs.begin(), surplus));
    }
    const std::size_t count = m_inputs.size() + inputs.size();
    remove(count > mostInputs ? count - mostInputs : 0);
    std::vector<std::uint64_t> shown;
    for (ReceivedInput& input : inputs) {
        if (isShown(input)) {
            shown.push_back(m_first + m_inputs.size());
        }
        m_inputs.push_back(std::move(input));
    }
    if (!shown.empty()) {
        beginInsertRows({}, rowCount(), rowCount() + static_cast<int>(shown.size()) - 1);
        m_rows.insert(m_rows.end(), shown.begin(), shown.end());
        endInsertRows();
    }
}

void InputModel::remove(std::size_t count)
{
    const auto left = std::lower_bound(m_rows.begin(), m_rows.end(), m_first + count);
    if (left != m_rows.begin()) {
        beginRemoveRows({}, 0, static_cast<int>(left - m_rows.begin()) - 1);
        m_rows.erase(m_rows.begin(), left);
        endRemoveRows();
    }
    m_inputs.erase(m_inputs.begin(),
                   std::next(m_inputs.begin(), static_cast<std::ptrdiff_t>(count)));
    m_first += count;
}

void InputModel::clear()
{
    remove(m_inputs.size());
}

void InputModel::setFilter(EnumPeripheralShortCutType kind, const QString& text)
{
    m_kind = kind;
    m_text = searchText(text.trimmed());
    filter();
}

void InputModel::setTexts()
{
    filter(); // what is looked for may stand in other rows now
    emit headerDataChanged(Qt::Horizontal, 0, columns - 1);
}

void InputModel::filter()
{
    beginResetModel();
    m_rows.clear();
    for (std::size_t i = 0; i < m_inputs.size(); ++i) {
        if (isShown(m_inputs[i])) {
            m_rows.push_back(m_first + i);
        }
    }
    endResetModel();
}

bool InputModel::isShown(const ReceivedInput& input) const
{
    if (m_kind != PeripheralKeyboard && input.message.kind != m_kind) {
        return false;
    }
    const auto has = [&](Column column) {
        return searchText(textOf(input, column)).contains(m_text);
    };
    return m_text.isEmpty() || has(wordsColumn) || has(sourceColumn) || has(actionColumn);
}

const ReceivedInput& InputModel::inputOf(int row) const
{
    return m_inputs[m_rows[static_cast<std::size_t>(row)] - m_first];
}

QString InputModel::line(int row) const
{
    QStringList texts;
    for (int column = 0; column < columns; ++column) {
        texts.append(textOf(inputOf(row), column));
    }
    return texts.join('\t');
}

int InputModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int InputModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : columns;
}

QVariant InputModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid()) {
        return {};
    }
    const ReceivedInput& input = inputOf(index.row());
    if (role == Qt::DisplayRole || (role == Qt::ToolTipRole && index.column() == wordsColumn)) {
        const QString text = textOf(input, index.column());
        return role == Qt::DisplayRole ? text : "<p>" + text.toHtmlEscaped() + "</p>";
    }
    if (role == levelRole) {
        return index.column() == levelColumn ? input.level() : -1.0;
    }
    return {};
}

QVariant InputModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    constexpr std::array keys{"MessageTime",  "MonitorKind",  "MonitorSource",
                              "MonitorWords", "MonitorLevel", "MonitorAction"};
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return {};
    }
    return hostText(keys[static_cast<std::size_t>(section)]);
}

} // namespace mivohost
