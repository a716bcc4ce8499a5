#pragma once

#include "peripherals/inputdecoder.h"

#include <QtCore/QAbstractTableModel>

#include <cstdint>
#include <deque>
#include <vector>

namespace mivohost {

/// The last messages that came in, oldest first, as far as they pass a filter. Texts are made when
/// they are asked for. GUI thread.
class InputModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column {
        timeColumn,
        kindColumn,
        sourceColumn,
        wordsColumn,
        levelColumn,
        actionColumn,
        columns
    };
    static constexpr std::size_t mostInputs = 10000;
    /// Of the level column: from 0 to 1; -1 for none.
    static constexpr int levelRole = Qt::UserRole;

    /// Where there are too many, the oldest go. Leaves `inputs` in no certain state.
    void add(std::vector<ReceivedInput>& inputs);
    void clear();
    /// Shows those of one kind, of the keyboard all, with a text in any column that counts, case
    /// and accents aside.
    void setFilter(EnumPeripheralShortCutType kind, const QString& text);
    /// Makes every text again in the language in force.
    void setTexts();

    /// Whether there are any, shown or not.
    bool hasInputs() const { return !m_inputs.empty(); }
    /// A row as one line, its columns separated by tabs.
    QString line(int row) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    const ReceivedInput& inputOf(int row) const;
    bool isShown(const ReceivedInput& input) const;
    void filter();
    /// Forgets the oldest.
    void remove(std::size_t count);

    std::deque<ReceivedInput> m_inputs;
    std::uint64_t m_first = 0;        // the number of the first of them
    std::deque<std::uint64_t> m_rows; // the numbers of those that are shown
    EnumPeripheralShortCutType m_kind = PeripheralKeyboard;
    QString m_text; // as searchText()
};

} // namespace mivohost
