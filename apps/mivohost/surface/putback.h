#pragma once

#include "surface/rehearsal.h"

#include <QtCore/QTimer>

#include <set>
#include <utility>

class QMenu;
class QPoint;
class QPushButton;
class QScrollArea;

namespace mivo::settings {
class SettingsDialog;
}

namespace mivohost {

class DifferenceMarks;
class RuntimeThread;

/// The section that a page stands in.
QScrollArea* areaOf(QWidget* page);

/// Puts settings back to their defaults out of the settings dialog: a control that differs has a
/// mark, and "Put back to ..." in its context menu; a section has "Put this section back" at its
/// end and in the context menu of its button. GUI thread.
class PutBack : public QObject
{
public:
    /// Takes the file in which all settings are kept, or why there is none, for a person to read.
    using Kept = std::function<void(const QString& file, const QString& error)>;

    /// Keeps all settings in a file before a section is put back, and calls `kept` on the GUI
    /// thread, perhaps later. With an error nothing is put back. Null, nothing is kept.
    using Keep = std::function<void(const Kept& kept)>;

    /// A page, what makes another one of its kind, and the section of the settings that it shows.
    struct Page
    {
        mivo::settings::ISettingBox* page;
        PageMaker maker;
        SettingsStore::Section section;
    };

    /// All outlive this.
    PutBack(mivo::settings::SettingsDialog& dialog, const std::vector<Page>& pages,
            RuntimeThread& runtime, SettingsStore& store);
    ~PutBack() override;

    void setKeep(Keep keep) { m_keep = std::move(keep); }
    void translateLanguage();

    /// The controls that are marked.
    const std::vector<Difference>& differences() const { return m_differences; }

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    struct Section
    {
        QScrollArea* area = nullptr;
        QWidget* navigation = nullptr; // its button
        QPushButton* button = nullptr; // at its end
        DifferenceMarks* marks = nullptr;
        std::set<SettingsStore::Section> settings;
    };

    using Values = std::vector<std::pair<QString, QVariant>>;

    void addButton(Section& section);
    void placeButton(const Section& section) const;
    void refresh();
    void show(std::vector<Difference> differences);
    void showMenu(const Difference& difference, const QPoint& place);
    static void open(QMenu* menu, const QPoint& place);
    Rehearsal::Settings differingIn(const Section& section) const;
    void askForSection(std::size_t index);
    void putSectionBack(std::size_t index, const QString& keptIn);
    QString nameOf(std::size_t index) const;
    void set(const Values& values);

    mivo::settings::SettingsDialog& m_dialog;
    RuntimeThread& m_runtime;
    SettingsStore& m_store;
    Keep m_keep;
    std::vector<Section> m_sections;
    Rehearsal m_rehearsal;
    QTimer m_refresh;
    Rehearsal::Settings m_settings; // as they were last read
    std::vector<Difference> m_differences;
    sigslot::connection m_connection;
};

} // namespace mivohost
