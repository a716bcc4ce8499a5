#pragma once

#include "mivohostapi/signals.h"
#include "mivosettingswidgets/export.h"

#include <QtWidgets/QGroupBox>

#include <vector>

class IZRRuntime;

namespace mivo::settings {

#ifdef MIVO_SIGSLOT_ADAPTOR
#define MIVO_BUILT_WITH_SIGNALS libraryWasBuiltWithSignalsOverBoost
#else
#define MIVO_BUILT_WITH_SIGNALS libraryWasBuiltWithTheSigslotLibrary
#endif
/// A host whose signals are not the library's lacks the function of this name: it is not linked,
/// and one that was linked before is not started.
MIVOSETTINGSWIDGETS_EXPORT bool MIVO_BUILT_WITH_SIGNALS();
[[maybe_unused]] static const bool signalsAreTheLibrarys = MIVO_BUILT_WITH_SIGNALS();

/// One page of the settings dialog.
///
/// GUI thread throughout. The host creates a page, hands it its services (which stay the host's and
/// must outlive the page) and inserts it into a SettingsDialog, whose widget tree owns it from then
/// on. Order: construct, setZRRuntime, setPriorityIndex and setTitleText as needed,
/// loadLanguageFiles, the page's own setSettings, insert.
class MIVOSETTINGSWIDGETS_EXPORT ISettingBox : public QGroupBox
{
    Q_OBJECT

public:
    /// @{
    /// As QGroupBox.
    ISettingBox(const QString& title, QWidget* parent);
    explicit ISettingBox(QWidget* parent);
    ISettingBox();
    /// @}
    ~ISettingBox() override;

    /// Does nothing, and no page overrides it.
    virtual void setSettingsFilePath(const QString& path);

    /// @{
    /// The key under which the dialog groups pages: at first the untranslated name of the page's
    /// section, and its translation after translateLanguage.
    virtual void setTitleText(const QString& text) = 0;
    virtual QString titleText() = 0;
    /// @}

    /// @{
    /// The page's place within its section, in ascending order. -1 (the default) stands for the
    /// number of pages that are there when it is inserted, which is compared with the others'
    /// places: of pages that all have -1 each goes below those before it, but it goes above a page
    /// with a greater place.
    virtual void setPriorityIndex(int index) = 0;
    virtual int priorityIndex() const = 0;
    /// @}

    /// Sets every text again in the translator's language and announces the section's name.
    virtual void translateLanguage() = 0;

    /// Switches the translator that all pages and the dialog share, then translates this page only.
    virtual void switchLanguage(const QString& language) = 0;

    /// Adds language files (.qm) to the shared translator; one that cannot be loaded is passed
    /// over.
    virtual void loadLanguageFiles(const std::vector<QString>& files) const = 0;

    /// The runtime of all store calls; must be set before the store, and never null.
    virtual void setZRRuntime(IZRRuntime* runtime) = 0;

Q_SIGNALS:
    /// The name of the page's section was translated anew.
    void sigTitleTextChanged(const QString& titleText);
};

} // namespace mivo::settings
