#pragma once

#include "mivohostapi/soundcardrecords.h"
#include "mivosettingswidgets/controls.h"
#include "mivosettingswidgets/storeaccess.h"

#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <algorithm>
#include <deque>
#include <functional>
#include <map>
#include <optional>

class QVBoxLayout;

namespace mivo::settings {

class VirtualMappingWidget;

/// The editors of the audio page, one below the other. Those that have been added wait until they
/// are made, in several turns of the event loop. Each shows what there is then, so that no change
/// needs to reach it before. GUI thread.
class MappingEditors : public QObject
{
    Q_OBJECT

public:
    using Mapping = velorn::mediadispatch::STSoundCardMappingInfo;
    /// What there is, if it can be read. If not, somebody has to call makeWaiting() again.
    using Read = std::function<std::optional<STSoundCardMappingsInfo>(const CallSite& site)>;
    using Make = std::function<VirtualMappingWidget*(const Mapping& mapping)>;

    /// Appends to `column`, which must outlive it, behind `before` in the order of Tab.
    MappingEditors(QVBoxLayout* column, QWidget* before, Read read, Make make);

    void add(const std::vector<Mapping>& mappings, const CallSite& site);

    /// Makes those that wait, as many as one turn has room for, and the others in later turns.
    void makeWaiting(const CallSite& site);
    /// The same, in a turn of its own.
    void makeWaitingLater(int milliseconds = 1);

    /// Null while it waits, or when there is none.
    VirtualMappingWidget* find(std::uint64_t id) const;
    bool isWaiting(std::uint64_t id) const;
    void remove(std::uint64_t id);

    /// Applies to every editor that is filed, in the order of their ids.
    template <typename Change>
    void forEach(Change change)
    {
        const LayoutPause pause(m_column);
        for (const auto& [id, editor] : m_editors) {
            change(*editor);
        }
    }

signals:
    void made(std::uint64_t id, VirtualMappingWidget* editor);

private:
    void append(const Mapping& mapping, const STSoundCardMappingsInfo& known);
    /// Keeps room for the editors that wait, so that the page does not grow, and is not painted
    /// again, with each of them.
    void reserve();

    QVBoxLayout* m_column;
    QWidget* m_before;
    Read m_read;
    Make m_make;
    std::map<std::uint64_t, VirtualMappingWidget*> m_editors;
    std::deque<Mapping> m_waiting;
    QTimer m_later;
    int m_room = 0; // that one of them takes
};

} // namespace mivo::settings
