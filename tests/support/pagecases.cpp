#include "support/pagecases.h"

#include "support/test.h"

#include <mivosettingswidgets/audiosettingbox.h>
#include <mivosettingswidgets/codeccontrolsettingbox.h>
#include <mivosettingswidgets/displaycontrolsettingbox.h>
#include <mivosettingswidgets/fileinfosettingbox.h>
#include <mivosettingswidgets/generalsettingbox.h>
#include <mivosettingswidgets/netdevicesettingwidget.h>
#include <mivosettingswidgets/officepptsettingbox.h>
#include <mivosettingswidgets/onlinesettingbox.h>
#include <mivosettingswidgets/projectsettingbox.h>
#include <mivosettingswidgets/resplaycontrolsettingbox.h>
#include <mivosettingswidgets/stagesettingbox.h>
#include <mivosettingswidgets/undosettingbox.h>

using namespace mivo::settings;

namespace {

template <typename Page>
PageCase pageCase(bool keepsStoreWhenUnset, const MissingLines& missing, std::size_t getters,
                  std::size_t followed, std::vector<ControlCase> controls,
                  const char* qtWarning = nullptr)
{
    return {Page::staticMetaObject.className(),
            keepsStoreWhenUnset,
            missing,
            getters,
            followed,
            std::move(controls),
            qtWarning,
            [] { return new Page; }};
}

const MissingLines logsNoStore{"sharedSettings is nullptr!|setSettings",
                               "sharedSettings is nullptr!|unsetSettings"};

std::function<void(QWidget*)> typing(const QString& text)
{
    return [text](QWidget* control) { typeInto(control, text); };
}

/// Types the digits of a time over the sections of the old one, and leaves the field.
void typingTime(QWidget* control)
{
    control->setFocus(Qt::TabFocusReason); // selects the first section
    QTest::keyClicks(control, "000123");
    control->clearFocus();
}

void clicking(QWidget* control)
{
    QTest::mouseClick(control, Qt::LeftButton, {}, QPoint(8, control->height() / 2));
}

void choosingLast(QWidget* control)
{
    control->setFocus();
    QTest::keyClick(control, Qt::Key_End);
    control->clearFocus();
}

const QTemporaryDir& someFolder()
{
    static const QTemporaryDir folder;
    return folder;
}

void browsing(QWidget* control)
{
    whenModal<QFileDialog>([](QFileDialog& dialog) { chooseFolder(dialog, someFolder().path()); });
    clicking(control->nextInFocusChain());
}

ControlCase checkBox(const char* setting, int index, const char* writeSlot)
{
    return {setting,  "mivo::widgets::CheckBox", index, false, false, false, true, clicking,
            writeSlot};
}

ControlCase number(const char* setting, int index, const QVariantList& values,
                   const char* writeSlot, std::pair<int, int> limits)
{
    return {setting,   "mivo::widgets::SpinEditBox", index,     values[0], values[1], values[2],
            values[3], typing(values[3].toString()), writeSlot, limits};
}

ControlCase fade(const char* setting, int index, const char* writeSlot)
{
    return number(setting, index, {0.5, 10., 0., 2.5}, writeSlot, {0, 10});
}

ControlCase port(const char* setting, int index, const char* writeSlot)
{
    auto row = number(setting, index, {0., 65534., 0., 80.}, writeSlot, {0, 65534});
    row.record = [](const QVariant& number) { return "0|" + number.toString(); };
    return row;
}

/// Width and height are written together.
ControlCase resolution(const char* setting, int index, double initial)
{
    auto row = number(setting, index, {initial, 16384., initial, 500.},
                      "onResolutionEditingFinished", {0, 16384});
    row.hops = 2;
    return row;
}

ControlCase duration(const char* setting, int initial, const char* writeSlot)
{
    return {setting,   "mivo::widgets::TimeEditBox", 0, initial, 9000, initial, 83000, typingTime,
            writeSlot, std::pair(3000, 86399000)};
}

/// The button of two that is not chosen at first; the setting is the number of the chosen one.
ControlCase oneOfTwo(const char* setting, int index, const char* writeSlot)
{
    const auto number = [index](const QVariant& chosen) {
        return chosen.toBool() == (index == 0) ? 0 : 1;
    };
    return {setting, "QRadioButton", index,     false,  false, false,
            true,    clicking,       writeSlot, {0, 0}, number};
}

ControlCase folder(const char* setting, int index, const char* subFolder, const char* writeSlot)
{
    return {setting,   "mivo::widgets::EditBox",        index,    QString(), "/folder/from 目录",
            QString(), someFolder().path() + subFolder, browsing, writeSlot};
}

ControlCase color(const char* setting, int index, const char* initial, const char* writeSlot)
{
    return {setting,   "mivo::widgets::EditBox", index,    initial, "#ff0010", initial,
            "#123abc", typing("#123ABC"),        writeSlot};
}

} // namespace

const std::vector<PageCase>& pageCases()
{
    static const std::vector<PageCase> cases{
        pageCase<GeneralSettingBox>(
            true, {"sharedSettings is nullptr|setSettings"}, 3, 13,
            {checkBox("autoStart", 0, "onStartUpCheckBoxStateChanged"),
             number("autoStartDelayTime", 0, {0., 300, 0., 80.}, "onDelayTimeChanged", {0, 300}),
             checkBox("closeSoftWareMinimize", 1, "onCloseSoftwareMinimizeCheckBoxStateChanged")}),
        pageCase<UndoSettingBox>(
            true, {}, 1, 1,
            {number("undoStep", 0, {50., 500, 1., 80.}, "slotUndoStepChanged", {1, 500})}),
        pageCase<OnlineSettingBox>(
            false, {}, 1, 1, {checkBox("autoSyncResources", 0, "onAutoSyncResourcesStateChanged")}),
        pageCase<AudioSettingBox>(false, {"sharedSettings is nullptr!|initSettings"}, 0, 10, {}),
        pageCase<DeviceSettingWidget>(
            true, {}, 2, 4,
            {port("tcpPort", 0, "onTcpPortChanged"), port("udpPort", 1, "onUdpPortChanged")},
            "_settings is null|void mivo::settings::DeviceSettingWidget::Impl::"),
        pageCase<DisplayControlSettingBox>(
            false,
            {"sharedSettings is nullptr!|setSettings", "shareSettings is nullptr!|unsetSettings",
             "DisplayControlSettingBox::setSettings zrRuntime is nullptr!|setSettings",
             "DisplayControlSettingBox::setSettings zrRuntime is nullptr!|unsetSettings"},
            3, 6,
            {checkBox("blackScreenMute", 0, "onBlackScreenMuteCheckBoxStateChanged"),
             checkBox("mfps", 1, "onMFPSCheckBoxStateChanged"),
             checkBox("efps", 2, "onEFPSCheckBoxStateChanged"),
             fade("fadeInTime", 0, "onFadeInTimeSpinBoxValueChanged"),
             fade("fadeOutTime", 1, "onFadeOutTimeSpinBoxValueChanged"),
             oneOfTwo("imageHierarchy", 0, "onImageHierarchyBtnGroupChanged")}),
        pageCase<CodecControlSettingBox>(
            true,
            {"sharedSettings is nullptr!|setSettings", "sharedSettings is nullptr!|unsetSettings",
             "CodecControlSettingBox::setSettings zrRuntime is nullptr!|setSettings",
             "CodecControlSettingBox::unsetSettings zrRuntime is nullptr!|unsetSettings"},
            3, 3,
            {{"displayTechnologyStandard", "mivo::widgets::ComboBox", 3, "BT.709", "DCI-P3",
              "BT.709", "BT.2020", choosingLast, "onDisplayTechnologyStandardsComBoxChanged"},
             {"dynamicRangeConfig",
              "mivo::widgets::ComboBox",
              2,
              "8bit",
              "8bit",
              "8bit",
              "10bit",
              choosingLast,
              "processDisplayConfigChange",
              {0, 0},
              [](const QVariant& depth) { return "0|" + depth.toString().remove("bit"); }}}),
        pageCase<ResPlayControlSettingBox>(
            true, logsNoStore, 1, 1, {duration("pictureDuration", 5000, "onDurationTimeChanged")}),
        pageCase<ProjectSettingBox>(
            true, {}, 1, 8,
            {checkBox("openRecentFiles", 0, "onOpenRecentFilesCheckBoxStateChanged"),
             checkBox("openProjectFileDefaultPlay", 1,
                      "onOpenProjectFileDefaultPlayCheckBoxStateChanged"),
             // Before the boxes that it makes editable.
             checkBox("autoSaveProjectFiles", 2, "onAutoSaveProjectFilesCheckBoxStateChanged"),
             number("autoSaveProjectFilesInterval", 0, {1., 30, 5., 7.},
                    "onIntervalSpinBoxValueChanged", {1, 30}),
             number("autoSaveProjectFilesMaxNum", 1, {5., 20, 5., 1.},
                    "onAutoSaveMaxNumSpinBoxValueChanged", {1, 20}),
             folder("autoSavePath", 0, "/projectbackups", "onAutoSavePathChanged"),
             checkBox("notPromptForSave", 3, "onNotPromptForSaveCheckBoxStateChanged"),
             checkBox("newProjResetOutput", 4, "onNewProjResetOutputCheckBoxStateChanged")}),
        pageCase<FileInfoSettingBox>(
            true, logsNoStore, 1, 4,
            {{"playLogStorageTimeType", "mivo::widgets::ComboBox", 0, 0, 3, 0, 4, choosingLast,
              "onPlayLogStorageTimeComboBoxIndexChanged"},
             folder("playLogPath", 0, "/playlog", "onPlayLogPathChanged"),
             folder("cachePath", 1, "/cache", "onCacheChanged"),
             folder("sharePath", 2, "/sharedfolder", "onShareChanged")}),
        pageCase<OfficePPTSettingBox>(
            true, {}, 1, 6,
            {checkBox("pptAutoplay", 0, "onPPTAutoplayStateChanged"),
             duration("pptAutoplayInterval", 3000, "onPPTAutoplayIntervalTimeChanged"),
             oneOfTwo("pptPlayMode", 1, "onPPTPlayModeBtnGroupChanged"),
             resolution("pptResolutionWidth", 0, 1920.),
             resolution("pptResolutionHeight", 1, 1080.)}),
        pageCase<StageSettingBox>(
            true,
            {"sharedSettings is nullptr!|setSettings", "sharedSettings is nullptr!|unsetSettings",
             "StageSettingBox::setSettings zrRuntime is nullptr!|setSettings"},
            2, 2,
            {color("canvasColor", 0, "#000000", "notifyChangeColor"),
             color("outputColor", 1, "#ffffff", "notifyChangeTextColor")}),
    };
    return cases;
}

std::vector<QWidget*> controlsIn(QWidget* parent)
{
    std::vector<QWidget*> controls;
    for (QWidget* child : parent->findChildren<QWidget*>()) {
        const bool isPart = qobject_cast<QLineEdit*>(child) != nullptr
                            && qobject_cast<QAbstractSpinBox*>(child->parentWidget()) != nullptr;
        if (!isPart
            && (qobject_cast<QAbstractButton*>(child) || qobject_cast<QAbstractSpinBox*>(child)
                || qobject_cast<QComboBox*>(child) || qobject_cast<QLineEdit*>(child)
                || qobject_cast<QAbstractItemView*>(child))) {
            controls.push_back(child);
        }
    }
    return controls;
}
