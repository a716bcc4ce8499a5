#include "soundcards/mappingeditors.h"

#include "mivosettingswidgets/controls.h"
#include "mivosettingswidgets/virtualmappingwidget.h"

#include <QtWidgets/QVBoxLayout>

#include <utility>

namespace mivo::settings {

namespace {

/// The work of one turn of the event loop, counted in columns: some hundred columns at once would
/// delay painting. An editor by itself takes as long as two columns.
constexpr int columnsInTurn = 32;
constexpr int columnsForEditor = 2;

} // namespace

MappingEditors::MappingEditors(QVBoxLayout* column, QWidget* before, Read read, Make make)
    : m_column(column), m_before(before), m_read(std::move(read)), m_make(std::move(make))
{
    m_later.setSingleShot(true);
    connect(&m_later, &QTimer::timeout, this, [this] { makeWaiting("makeEditors"); });
    reserve();
}

void MappingEditors::add(const std::vector<Mapping>& mappings, const CallSite& site)
{
    m_waiting.insert(m_waiting.end(), mappings.begin(), mappings.end());
    makeWaiting(site);
}

void MappingEditors::makeWaiting(const CallSite& site)
{
    const auto known = m_waiting.empty() ? std::nullopt : m_read(site);
    if (!known) {
        return;
    }
    const LayoutPause pause(m_column);
    const int cost = columnsForEditor + std::max(1, known->devices.size());
    int spent = 0;
    while (!m_waiting.empty() && (spent == 0 || spent + cost <= columnsInTurn)) {
        append(m_waiting.front(), *known);
        m_waiting.pop_front();
        spent += cost;
    }
    reserve();
    makeWaitingLater(); // after painting
}

void MappingEditors::makeWaitingLater(int milliseconds)
{
    if (!m_waiting.empty()) {
        m_later.start(milliseconds);
    }
}

void MappingEditors::append(const Mapping& mapping, const STSoundCardMappingsInfo& known)
{
    QWidget* lastStop = m_before;
    for (int item = m_column->count() - 1; item >= 0 && lastStop == m_before; --item) {
        if (QWidget* editor = m_column->itemAt(item)->widget()) {
            lastStop = tabStops(editor, editor).back();
        }
    }
    const auto now = std::find_if(known.mappings.begin(), known.mappings.end(),
                                  [&](const auto& other) { return other.id == mapping.id; });
    VirtualMappingWidget* editor = m_make(now == known.mappings.end() ? mapping : *now);
    editor->setProperty("style", QStringLiteral("BG4"));
    editor->resize(0, 0); // out of sight until the layout has placed it
    m_column->addWidget(editor);
    editor->show();
    m_column->addStretch();
    for (QWidget* stop : tabStops(editor, editor)) {
        QWidget::setTabOrder(lastStop, stop);
        lastStop = stop;
    }
    // A second one for an id is shown but not filed; kept on purpose.
    m_editors.emplace(mapping.id, editor);
    editor->resetSoundCardsCombobox(known);
    m_room = editor->sizeHint().height() + m_column->spacing();
    emit made(mapping.id, editor);
}

VirtualMappingWidget* MappingEditors::find(std::uint64_t id) const
{
    const auto found = m_editors.find(id);
    return found == m_editors.end() ? nullptr : found->second;
}

bool MappingEditors::isWaiting(std::uint64_t id) const
{
    return std::any_of(m_waiting.begin(), m_waiting.end(),
                       [id](const Mapping& mapping) { return mapping.id == id; });
}

void MappingEditors::remove(std::uint64_t id)
{
    VirtualMappingWidget* editor = find(id);
    if (editor == nullptr) {
        const auto waiting =
            std::find_if(m_waiting.begin(), m_waiting.end(),
                         [id](const Mapping& mapping) { return mapping.id == id; });
        if (waiting != m_waiting.end()) {
            m_waiting.erase(waiting);
            reserve();
        }
        return;
    }
    m_editors.erase(id);
    for (int item = 0; item < m_column->count(); ++item) {
        if (m_column->itemAt(item)->widget() == editor) {
            delete m_column->takeAt(item); // the stretch behind it stays; kept on purpose
            editor->hide();
            editor->deleteLater(); // never at once: one of its own signals may have led here
            return;
        }
    }
}

void MappingEditors::reserve()
{
    m_column->setContentsMargins(20, 24, 20, 24 + m_room * static_cast<int>(m_waiting.size()));
}

} // namespace mivo::settings
