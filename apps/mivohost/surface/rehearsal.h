#pragma once

#include "mivohostapi/izrruntime.h"
#include "mivohostkit/settingsstore.h"

#include <QtCore/QObject>
#include <QtCore/QPointer>

#include <functional>
#include <map>
#include <memory>
#include <vector>

class QWidget;

namespace mivo::settings {
class ISettingBox;
}

namespace mivohost {

/// Makes another page of the same class, with that runtime and bound to that store.
using PageMaker =
    std::function<std::unique_ptr<mivo::settings::ISettingBox>(IZRRuntime&, MivoSettings&)>;

/// A control that shows another value than the default of its setting.
struct Difference
{
    QPointer<QWidget> control;
    QString defaultText;  ///< what it would show
    QStringList settings; ///< that make the difference, by the names under which they are kept
};

/// Finds out which controls differ from their defaults, and by which settings, without being told
/// which control shows what: copies of the pages, which nobody sees, are bound to a copy of the
/// settings, and each setting that differs is put to its default there. The controls that change
/// are those that show it. GUI thread.
class Rehearsal : public QObject
{
public:
    using Settings = std::vector<SettingsStore::Entry>;
    using Finished = std::function<void(std::vector<Difference>)>;

    /// `finished` is called when a run ends.
    explicit Rehearsal(Finished finished);
    ~Rehearsal() override;

    /// Before the first run. `page` outlives this.
    void addPage(mivo::settings::ISettingBox* page, PageMaker maker);

    /// Begins with the settings as they are now, from the event loop; ends a run that goes on.
    void start(const Settings& settings);

    /// To be called when the pages have another language, before start(); ends a run that goes on.
    void translateLanguage();

private:
    class Copy;
    struct Page
    {
        mivo::settings::ISettingBox* shown;
        PageMaker maker;
        std::unique_ptr<mivo::settings::ISettingBox> copy;
    };
    using Values = std::map<QWidget*, QVariant>; // by the control of the copy

    void makeCopies();
    void next(int run);
    Values values() const;
    void compare(const SettingsStore::Entry& setting, const Values& now);
    std::vector<Difference> differences() const;

    /// The runtime of the copies: everything is called at once, where it is.
    class InPlace : public IZRRuntime
    {
    public:
        void post(std::function<void()> task, const char* /*file*/, int /*line*/,
                  const char* /*function*/) override
        {
            task();
        }
        bool isUiSyncEnabled() const override { return true; }
        bool isInRuntimeThread() const override { return true; }
        bool canInvoke(const char* /*file*/, int /*line*/, const char* /*function*/) const override
        {
            return true;
        }
    };

    Finished m_finished;
    InPlace m_runtime;
    Copy* m_rows = nullptr;                 // of the store below
    std::unique_ptr<SettingsStore> m_store; // outlives the copies
    std::vector<Page> m_pages;

    /// What was found for a value of a setting.
    struct Known
    {
        QVariant value;
        std::vector<Difference> differences;
    };
    std::map<QString, Known> m_known; // by the setting, in the language shown
    Settings m_settings;              // that differ from their defaults
    Settings m_unknown;               // of these, what is tried
    std::size_t m_step = 0;
    int m_run = 0;
    Values m_before;
};

} // namespace mivohost
