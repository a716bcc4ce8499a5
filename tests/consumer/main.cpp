// A host of a few lines, built against the installed package only.

#include <mivohostapi/imivosettings.h>
#include <mivohostapi/izrruntime.h>
#include <mivosettingswidgets/settingsdialog.h>
#include <mivosettingswidgets/undosettingbox.h>
#include <mivostyle/style.h>

#include <QtCore/QFile>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDoubleSpinBox>

namespace {

class Runtime : public IZRRuntime
{
public:
    void post(std::function<void()> task, const char*, int, const char*) override { task(); }
    bool isUiSyncEnabled() const override { return true; }
    bool isInRuntimeThread() const override { return true; }
    bool canInvoke(const char*, int, const char*) const override { return true; }
};

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    application.setStyleSheet(mivo::style::styleSheet());
    Runtime runtime;
    mivo::settings::SettingsDialog dialog;
    dialog.loadLanguageFiles(mivo::style::languageFiles());
    auto* page = new mivo::settings::UndoSettingBox;
    page->setZRRuntime(&runtime);
    dialog.insertSettingBox(page);
    dialog.switchLanguage("en");
    page->switchLanguage("en");
    dialog.show();
    QApplication::processEvents();

    if (application.styleSheet().isEmpty() || !QFile::exists(":/mivo/style/icons/check.svg")
        || page->title() != "Undo and redo") {
        return 3;
    }
    // Without a store an edit stays where it is and is logged.
    auto* edit = dialog.findChild<QDoubleSpinBox*>();
    if (edit == nullptr || edit->value() != 50) {
        return 1;
    }
    edit->setValue(44);
    emit edit->editingFinished();
    return edit->value() == 44 ? 0 : 2;
}
