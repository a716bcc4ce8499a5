#pragma once

#include <QtCore/QAbstractTableModel>
#include <QtCore/QCollator>
#include <QtCore/QSortFilterProxyModel>

#include <array>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace mivo::settings {
class ShortCutMgr;
}

namespace mivohost {

class Peripherals;

/// All actions with what triggers them: a column for each kind, in the order of
/// EnumPeripheralShortCutType behind that of the action. GUI thread, as all here.
class BindingsModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    static constexpr int columns = 5;
    /// Why a cell is no good, as a text, or nothing: two actions have the same, or the program
    /// itself has it.
    static constexpr int conflictRole = Qt::UserRole;

    /// Shows the bindings of now, in the language in force.
    void fill(const mivo::settings::ShortCutMgr& manager, Peripherals& peripherals);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    using Control = std::pair<int, std::string>; // its column and text
    struct Row
    {
        std::string path;
        std::array<std::vector<std::string>, columns> controls; // by column; none of the first
    };

    Row& rowOf(const std::string& path);
    void add(int column, int type, const std::string& path, const std::string& control);
    const std::vector<std::string>& controlsOf(const QModelIndex& index) const;
    QString conflictOf(const Control& control) const;
    QStringList conflictsOf(const QModelIndex& index) const;

    std::vector<Row> m_rows;
    std::unordered_map<std::string, std::size_t> m_rowOf; // by path
    std::map<Control, int> m_uses;
};

/// The rows with a text, sorted as people sort: case aside, "DMX 2" before "DMX 10", nothing last.
class BindingsFilter : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    BindingsFilter();

    void setText(const QString& text);

protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override;
    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;

private:
    QString m_text; // as searchText()
    QCollator m_collator;
};

/// A page with the rows of such a model, as it is sorted and filtered.
QString bindingsHtml(const QAbstractItemModel& model);

/// A page as PDF, on A4. Any thread, while there is the application.
QByteArray pdfOf(const QString& html, const QString& title);

} // namespace mivohost
