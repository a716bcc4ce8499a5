// A host of a few lines, built against the installed package only.

#include <mivohostapi/imivosettings.h>
#include <mivohostapi/izrruntime.h>
#include <mivosettingswidgets/settingsdialog.h>
#include <mivosettingswidgets/undosettingbox.h>

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

class Settings : public MivoSettings
{
public:
    void setUndoStep(int step) override { undoStepChanged(undoStep = step); }
    int getUndoStep() override { return undoStep; }
    void setAutoSyncResources(bool on) override { autoSyncResourcesChanged(on); }
    bool getAutoSyncResources() override { return false; }
    STResourceSettingsInfo getResourceSettings() override { return {}; }
    void setPictureDuration(int /*milliseconds*/) override {}
    int getPictureDuration() override { return 5000; }
    void setPowerPointDuration(int /*milliseconds*/) override {}
    int getPowerPointDuration() override { return 5000; }
    void setOSDDuration(int /*milliseconds*/) override {}
    int getOSDDuration() override { return 5000; }

    int undoStep = 33;
};

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    Runtime runtime;
    Settings settings;
    mivo::settings::SettingsDialog dialog;
    auto* page = new mivo::settings::UndoSettingBox;
    page->setZRRuntime(&runtime);
    page->setSettings(&settings);
    dialog.insertSettingBox(page);
    dialog.show();
    QApplication::processEvents();

    auto* edit = dialog.findChild<QDoubleSpinBox*>();
    if (edit == nullptr || edit->value() != 33) {
        return 1;
    }
    edit->setValue(44);
    emit edit->editingFinished();
    return settings.undoStep == 44 ? 0 : 2;
}
