#pragma once

#include "mivosettingswidgets/export.h"

#include <mivowidgets/dialog.h>

#include <memory>
#include <vector>

namespace mivo::settings {

class ISettingBox;

/// The settings dialog: navigation buttons on the left, the chosen section on the right.
///
/// GUI thread. The host inserts the pages while their title texts are still the untranslated keys;
/// pages with the same title text share a section and its button. The first section,
/// "GeneralSettings", is always there.
class MIVOSETTINGSWIDGETS_EXPORT SettingsDialog : public mivo::widgets::Dialog
{
    Q_OBJECT

public:
    explicit SettingsDialog(QWidget* parent = nullptr);
    ~SettingsDialog() override;

    /// Files a page under the button of its title text, by its priority index. The dialog's widget
    /// tree owns the page from then on. `box` must not be null.
    void insertSettingBox(ISettingBox* box);

    /// Applies a style sheet to the dialog only. Cheapest before pages are inserted.
    void setSettingsstyleSheet(const QString& styleSheet);

    /// Adds language files (.qm) to the shared translator; one that cannot be loaded is passed
    /// over.
    void loadLanguageFiles(const std::vector<QString>& files) const;

    /// Switches the shared translator, then translates the dialog's own texts. Pages are switched
    /// each by itself.
    void switchLanguage(const QString& language);

    /// Sets the dialog's title and the first button's text again.
    void translateLanguage();

    /// Shows a search line above the buttons: every text of every page is searched, in the language
    /// shown and in the others that the shared translator has, and pages need do nothing for it.
    /// Its texts are those of the keys that begin with "SettingsSearch". Without this call, or at a
    /// second one, nothing changes.
    void enableSearch();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    class MIVOSETTINGSWIDGETS_NO_EXPORT Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace mivo::settings
