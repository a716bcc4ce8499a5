#include "soundcards/devicecolumns.h"

#include "soundcards/layoutspause.h"
#include "soundcards/soundcardcolumn.h"

#include <QtWidgets/QGridLayout>

#include <algorithm>
#include <iterator>
#include <utility>

namespace mivo::settings {

namespace {

constexpr int columnsInRow = 3;

SoundCardColumn* findIn(const std::vector<SoundCardColumn*>& columns, std::string_view device)
{
    const auto found =
        std::find_if(columns.begin(), columns.end(),
                     [&](const SoundCardColumn* column) { return column->device == device; });
    return found == columns.end() ? nullptr : *found;
}

} // namespace

DeviceColumns::DeviceColumns(QWidget* editor, QWidget* before, QWidget* refuge)
    : m_editor(editor), m_before(before), m_refuge(refuge), m_grid(new QGridLayout)
{
    m_grid->setSpacing(12);
    m_grid->setColumnStretch(columnsInRow, 1);
}

SoundCardColumn* DeviceColumns::find(std::string_view device) const
{
    return findIn(m_columns, device);
}

bool DeviceColumns::areAsSet() const
{
    return std::all_of(m_columns.begin(), m_columns.end(),
                       [](const SoundCardColumn* column) { return column->isAsSet(); });
}

void DeviceColumns::reset(const std::vector<std::string_view>& devices)
{
    const auto before = std::exchange(m_columns, {});
    for (const std::string_view device : devices) {
        SoundCardColumn* same = findIn(before, device);
        m_columns.push_back(same != nullptr ? same : make(device));
        if (same == nullptr) {
            orderTabStops(m_columns.back());
        }
    }
    for (SoundCardColumn* column : before) {
        if (find(column->device) != column) {
            retire(column);
        }
    }
}

void DeviceColumns::remove(const std::vector<std::string>& devices)
{
    const auto gone =
        std::stable_partition(m_columns.begin(), m_columns.end(), [&](const auto* column) {
            return column->device.empty()
                   || std::find(devices.begin(), devices.end(), column->device) == devices.end();
        });
    std::for_each(gone, m_columns.end(), [this](auto* column) { retire(column); });
    m_columns.erase(gone, m_columns.end());
    place();
}

SoundCardColumn* DeviceColumns::make(std::string_view device)
{
    auto* column = new SoundCardColumn(std::string(device), m_editor);
    column->setMappingName(m_mappingName);
    connect(column, &SoundCardColumn::changeRequested, this, &DeviceColumns::changeRequested);
    connect(column, &SoundCardColumn::tabStopsChanged, this,
            [this, column] { orderTabStops(column); });
    connect(column, &SoundCardColumn::focusedMarkRemoved, this, [this] { m_refuge->setFocus(); });
    connect(column, &SoundCardColumn::outdated, this, &DeviceColumns::outdated);
    column->move(0, m_editor->height()); // out of sight until the layout has placed it
    show(column, true);
    return column;
}

void DeviceColumns::retire(SoundCardColumn* column)
{
    saveFocus(column);
    column->disconnect(this);
    column->hide();
    column->deleteLater(); // its list may be open
}

void DeviceColumns::saveFocus(const QWidget* leaving)
{
    if (leaving->isAncestorOf(m_editor->window()->focusWidget())) {
        m_refuge->setFocus();
    }
}

void DeviceColumns::show(SoundCardColumn* column, bool visible)
{
    if (visible && column->isHidden()) {
        const LayoutsPause pause(m_editor);
        column->show();
    } else if (!visible && !column->isHidden()) {
        saveFocus(column);
        column->hide();
    }
}

void DeviceColumns::place()
{
    std::vector<SoundCardColumn*> shown;
    std::copy_if(m_columns.begin(), m_columns.end(), std::back_inserter(shown),
                 [](const SoundCardColumn* column) { return !column->isHidden(); });
    const auto first = std::mismatch(m_placed.begin(), m_placed.end(), shown.begin(), shown.end());
    for (auto column = first.first; column != m_placed.end(); ++column) {
        delete m_grid->takeAt(m_grid->count() - 1);
    }
    for (auto column = first.second; column != shown.end(); ++column) {
        const int place = m_grid->count();
        // addWidget() would look for it in all layouts of the editor, which takes long.
        m_grid->addItem(new QWidgetItem(*column), place / columnsInRow, place % columnsInRow, 1, 1,
                        Qt::AlignTop);
    }
    m_placed = std::move(shown);
}

void DeviceColumns::orderTabStops(const SoundCardColumn* column)
{
    const auto place = std::find(m_columns.begin(), m_columns.end(), column);
    QWidget* previous =
        place == m_columns.begin() ? m_before : (*std::prev(place))->tabStops().back();
    for (QWidget* stop : column->tabStops()) {
        QWidget::setTabOrder(previous, stop);
        previous = stop;
    }
}

void DeviceColumns::setMappingName(const QString& name)
{
    m_mappingName = name;
    for (SoundCardColumn* column : m_columns) {
        column->setMappingName(name);
    }
}

} // namespace mivo::settings
