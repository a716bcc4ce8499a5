#pragma once

#include "mivohostapi/soundcardrecords.h"
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

/// The editors of the audio page, one below the other. Added mappings are queued, and their editors
/// are made in several turns of the event loop, so that the page stays responsive. An editor reads
/// the store when it is made, so changes that arrive before that need not be kept. GUI thread.
class MappingEditors : public QObject
{
    Q_OBJECT

public:
    using Mapping = velorn::mediadispatch::STSoundCardMappingInfo;
    /// Reads all mappings and devices. Nothing when the runtime refuses; the queue then stays as it
    /// is until makeWaiting() or makeWaitingLater() is called again.
    using Read = std::function<std::optional<STSoundCardMappingsInfo>(const CallSite& site)>;
    using Make = std::function<VirtualMappingWidget*(const Mapping& mapping)>;

    /// Appends the editors to `column`, which must outlive this object; in the tab order they
    /// follow `before`.
    MappingEditors(QVBoxLayout* column, QWidget* before, Read read, Make make);

    void add(const std::vector<Mapping>& mappings, const CallSite& site);

    /// Makes editors for queued mappings, as many as one turn of the event loop allows, and leaves
    /// the others to later turns.
    void makeWaiting(const CallSite& site);
    /// The same, in a later turn.
    void makeWaitingLater(int milliseconds = 1);

    /// Null when the mapping is still queued, or not known.
    VirtualMappingWidget* find(std::uint64_t id) const;
    bool isWaiting(std::uint64_t id) const;
    void remove(std::uint64_t id);

    /// Calls `change` for each editor of find(), in the order of their ids.
    template <typename Change>
    void forEach(Change change)
    {
        for (const auto& [id, editor] : m_editors) {
            change(*editor);
        }
    }

signals:
    void made(std::uint64_t id, VirtualMappingWidget* editor);

private:
    void append(const Mapping& mapping, const STSoundCardMappingsInfo& known);
    /// Sets the bottom margin to the height that the queued editors will need, so that the page
    /// does not grow and repaint with each of them.
    void reserve();

    QVBoxLayout* m_column;
    QWidget* m_before;
    Read m_read;
    Make m_make;
    std::map<std::uint64_t, VirtualMappingWidget*> m_editors;
    std::deque<Mapping> m_waiting;
    QTimer m_later;
    int m_room = 0; // height of one editor with its spacing, in pixels
};

} // namespace mivo::settings
