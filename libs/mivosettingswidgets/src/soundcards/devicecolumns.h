#pragma once

#include "mivohostapi/soundcardrecords.h"

#include <QtCore/QObject>

#include <string>
#include <string_view>
#include <vector>

class QGridLayout;
class QWidget;

namespace mivo::settings {

class SoundCardColumn;

/// The columns in the editor of a sound-card mapping: which devices have one, where the visible
/// ones stand, and the tab order through them. GUI thread.
class DeviceColumns : public QObject
{
    Q_OBJECT

public:
    /// In the tab order the columns follow `before`. A focus that a column loses because it
    /// disappears goes to `refuge`: Qt would pass it on to the next device's box, where the next
    /// key press would change the chosen card.
    DeviceColumns(QWidget* editor, QWidget* before, QWidget* refuge);

    /// For the editor's layout.
    QGridLayout* grid() const { return m_grid; }

    const std::vector<SoundCardColumn*>& all() const { return m_columns; }
    SoundCardColumn* find(std::string_view device) const; ///< or null
    bool areAsSet() const;                                ///< every SoundCardColumn::isAsSet()

    /// Has a column for each of these devices, in their order, and no other. Those that there are
    /// already stay; new ones are shown. place() has to follow.
    void reset(const std::vector<std::string_view>& devices);
    /// Removes the columns of these devices, except that of this machine.
    void remove(const std::vector<std::string>& devices);

    /// Shows or hides one; place() has to follow.
    void show(SoundCardColumn* column, bool visible);
    /// Puts the visible ones in their places.
    void place();

    /// The name of the mapping, for screen readers.
    void setMappingName(const QString& name);

signals:
    /// As a column says.
    void changeRequested(mivo::EnumSoundCardChange kind,
                         const velorn::mediadispatch::STChosenSoundCard& soundCard);
    void outdated();

private:
    SoundCardColumn* make(std::string_view device);
    void retire(SoundCardColumn* column);
    void saveFocus(const QWidget* leaving);
    /// Puts the column's tab stops after those of the column before it.
    void orderTabStops(const SoundCardColumn* column);

    QWidget* m_editor;
    QWidget* m_before;
    QWidget* m_refuge;
    QGridLayout* m_grid;
    QString m_mappingName;
    std::vector<SoundCardColumn*> m_columns; // this machine first
    std::vector<SoundCardColumn*> m_placed;  // the visible ones, as they stand in the grid
};

} // namespace mivo::settings
