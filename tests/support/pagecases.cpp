#include "support/pagecases.h"

#include "support/dialogs.h"

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

#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QButtonGroup>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDateTimeEdit>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QRadioButton>

#include <algorithm>

using namespace mivo::settings;

namespace {

template <typename Page>
PageCase pageCase(std::string sourceFile, bool keepsStoreWhenUnset, bool checksStore,
                  std::size_t getters, std::size_t followed, std::vector<ControlCase> controls)
{
    return {Page::staticMetaObject.className(),
            std::move(sourceFile),
            keepsStoreWhenUnset,
            checksStore,
            getters,
            followed,
            [] { return new Page; },
            [](ISettingBox* page, MivoSettings* store) {
                static_cast<Page*>(page)->setSettings(store);
            },
            [](ISettingBox* page) { static_cast<Page*>(page)->unsetSettings(); },
            std::move(controls)};
}

/// Types `text` over the old value, and leaves the field.
std::function<void(QWidget*)> typing(const char* text)
{
    return [text](QWidget* control) {
        control->setFocus();
        QTest::keySequence(control, QKeySequence::SelectAll);
        QTest::keyClicks(control, QString::fromLatin1(text));
        QTest::keyClick(control, Qt::Key_Tab);
        control->clearFocus();
    };
}

/// Types the digits of a time over the sections of the old one, and leaves the field.
std::function<void(QWidget*)> typingTime(const char* digits)
{
    return [digits](QWidget* control) {
        control->setFocus(Qt::TabFocusReason); // selects the first section
        QTest::keyClicks(control, QString::fromLatin1(digits));
        control->clearFocus();
    };
}

void clicking(QWidget* control)
{
    QTest::mouseClick(control, Qt::LeftButton, {}, QPoint(8, control->height() / 2));
}

/// Chooses the last item with the keyboard.
void choosingLast(QWidget* control)
{
    control->setFocus();
    QTest::keyClick(control, Qt::Key_End);
    control->clearFocus();
}

const QString& someFolder()
{
    static const QTemporaryDir folder;
    static const QString path = folder.path();
    return path;
}

/// Presses the button behind a path, and chooses a folder in the dialog that opens.
void browsing(QWidget* control)
{
    whenModal<QFileDialog>([](QFileDialog& dialog) { chooseFolder(dialog, someFolder()); });
    clicking(control->nextInFocusChain());
}

ControlCase checkBox(const char* setting, int index, const char* writeSlot)
{
    return {setting,  "mivo::widgets::CheckBox", index, false, false, false, false, true, clicking,
            writeSlot};
}

ControlCase folder(const char* setting, int index, const char* subFolder, const char* writeSlot)
{
    return {setting,   "mivo::widgets::EditBox", index,
            QString(), "/stored/folder",         "/folder/from elsewhere/目录",
            QString(), someFolder() + subFolder, browsing,
            writeSlot};
}

/// Width and height are written together.
ControlCase resolution(const char* setting, int index, double initial)
{
    return {
        setting,       "mivo::widgets::SpinEditBox",  index,   initial, 700., 16384., initial, 500.,
        typing("500"), "onResolutionEditingFinished", nullptr, 2};
}

ControlCase color(const char* setting, int index, const char* initial, const char* writeSlot)
{
    return {setting,   "mivo::widgets::EditBox", index,    initial, "#1e2c36", "#ff0010", initial,
            "#123abc", typing("#123ABC"),        writeSlot};
}

PageCase networkCase()
{
    const auto closedPort = [](const QVariant& port) { return "0|" + port.toString(); };
    const auto port = [&](const char* setting, int index, double number, const char* writeSlot) {
        return ControlCase{setting,      "mivo::widgets::SpinEditBox",
                           index,        0.,
                           number,       65534.,
                           0.,           80.,
                           typing("80"), writeSlot,
                           closedPort};
    };
    auto network = pageCase<DeviceSettingWidget>("netdevicesettingwidget.cpp", true, false, 2, 4,
                                                 {port("tcpPort", 0, 7000., "onTcpPortChanged"),
                                                  port("udpPort", 1, 7001., "onUdpPortChanged")});
    network.qtWarning = "_settings is null";
    return network;
}

PageCase displayControlCase()
{
    const auto fade = [](const char* setting, int index, const char* writeSlot) {
        return ControlCase{
            setting,  "mivo::widgets::SpinEditBox", index, 0.5, 1.5, 10., 0., 2.5, typing("2.5"),
            writeSlot};
    };
    return pageCase<DisplayControlSettingBox>(
        "displaycontrolsettingbox.cpp", false, true, 3, 6,
        {checkBox("blackScreenMute", 0, "onBlackScreenMuteCheckBoxStateChanged"),
         checkBox("mfps", 1, "onMFPSCheckBoxStateChanged"),
         checkBox("efps", 2, "onEFPSCheckBoxStateChanged"),
         fade("fadeInTime", 0, "onFadeInTimeSpinBoxValueChanged"),
         fade("fadeOutTime", 1, "onFadeOutTimeSpinBoxValueChanged"),
         {"imageHierarchy", "QRadioButton", 0, false, false, false, false, true, clicking,
          "onImageHierarchyBtnGroupChanged",
          [](const QVariant& chosen) { return chosen.toBool() ? 0 : 1; }}});
}

PageCase codecControlCase()
{
    const auto standardRange = [](const QVariant& depth) {
        return "0|" + depth.toString().remove("bit");
    };
    return pageCase<CodecControlSettingBox>(
        "codeccontrolsettingbox.cpp", true, true, 3, 3,
        {{"displayTechnologyStandard", "mivo::widgets::ComboBox", 3, "BT.709", "DCI-P3", "BT.709",
          "BT.709", "BT.2020", choosingLast, "onDisplayTechnologyStandardsComBoxChanged"},
         {"dynamicRangeConfig", "mivo::widgets::ComboBox", 2, "8bit", "8bit", "8bit", "8bit",
          "10bit", choosingLast, "processDisplayConfigChange", standardRange}});
}

} // namespace

const std::vector<PageCase>& pageCases()
{
    static const std::vector<PageCase> cases{
        pageCase<GeneralSettingBox>(
            "generalsettingbox.cpp", true, false, 3, 13,
            {{"autoStart", "mivo::widgets::CheckBox", 0, false, false, false, false, true, clicking,
              "onStartUpCheckBoxStateChanged"},
             {"autoStartDelayTime", "mivo::widgets::SpinEditBox", 0, 0., 20, 300, 0., 80.,
              typing("80"), "onDelayTimeChanged"},
             {"closeSoftWareMinimize", "mivo::widgets::CheckBox", 1, false, false, false, false,
              true, clicking, "onCloseSoftwareMinimizeCheckBoxStateChanged"}}),
        pageCase<UndoSettingBox>("undosettingbox.cpp", true, false, 1, 1,
                                 {{"undoStep", "mivo::widgets::SpinEditBox", 0, 50., 120, 500, 1.,
                                   80., typing("80"), "slotUndoStepChanged"}}),
        pageCase<OnlineSettingBox>(
            "onlinesettingbox.cpp", false, false, 1, 1,
            {{"autoSyncResources", "mivo::widgets::CheckBox", 0, false, false, false, false, true,
              clicking, "onAutoSyncResourcesStateChanged"}}),
        pageCase<AudioSettingBox>("audiosettingbox.cpp", false, false, 0, 10, {}),
        networkCase(),
        displayControlCase(),
        codecControlCase(),
        pageCase<ResPlayControlSettingBox>(
            "resplaycontrolsettingbox.cpp", true, true, 1, 1,
            {{"pictureDuration", "mivo::widgets::TimeEditBox", 0, 5000, 8000, 9000, 5000, 83000,
              typingTime("000123"), "onDurationTimeChanged"}}),
        pageCase<ProjectSettingBox>(
            "projectsettingbox.cpp", true, false, 1, 8,
            {checkBox("openRecentFiles", 0, "onOpenRecentFilesCheckBoxStateChanged"),
             checkBox("openProjectFileDefaultPlay", 1,
                      "onOpenProjectFileDefaultPlayCheckBoxStateChanged"),
             // Before the boxes that it makes editable.
             checkBox("autoSaveProjectFiles", 2, "onAutoSaveProjectFilesCheckBoxStateChanged"),
             {"autoSaveProjectFilesInterval", "mivo::widgets::SpinEditBox", 0, 1., 12, 30, 5., 7.,
              typing("7"), "onIntervalSpinBoxValueChanged"},
             {"autoSaveProjectFilesMaxNum", "mivo::widgets::SpinEditBox", 1, 5., 8, 20, 5., 1.,
              typing("1"), "onAutoSaveMaxNumSpinBoxValueChanged"},
             folder("autoSavePath", 0, "/projectbackups", "onAutoSavePathChanged"),
             checkBox("notPromptForSave", 3, "onNotPromptForSaveCheckBoxStateChanged"),
             checkBox("newProjResetOutput", 4, "onNewProjResetOutputCheckBoxStateChanged")}),
        pageCase<FileInfoSettingBox>(
            "fileinfosettingbox.cpp", true, true, 1, 4,
            {{"playLogStorageTimeType", "mivo::widgets::ComboBox", 0, 0, 1, 3, 0, 4, choosingLast,
              "onPlayLogStorageTimeComboBoxIndexChanged"},
             folder("playLogPath", 0, "/playlog", "onPlayLogPathChanged"),
             folder("cachePath", 1, "/cache", "onCacheChanged"),
             folder("sharePath", 2, "/sharedfolder", "onShareChanged")}),
        pageCase<OfficePPTSettingBox>(
            "officepptsettingbox.cpp", true, false, 1, 6,
            {checkBox("pptAutoplay", 0, "onPPTAutoplayStateChanged"),
             {"pptAutoplayInterval", "mivo::widgets::TimeEditBox", 0, 3000, 8000, 9000, 3000, 83000,
              typingTime("000123"), "onPPTAutoplayIntervalTimeChanged"},
             {"pptPlayMode", "QRadioButton", 1, false, false, false, false, true, clicking,
              "onPPTPlayModeBtnGroupChanged", [](const QVariant& on) { return on.toInt(); }},
             resolution("pptResolutionWidth", 0, 1920.),
             resolution("pptResolutionHeight", 1, 1080.)}),
        pageCase<StageSettingBox>("stagesettingbox.cpp", true, true, 2, 2,
                                  {color("canvasColor", 0, "#000000", "notifyChangeColor"),
                                   color("outputColor", 1, "#ffffff", "notifyChangeTextColor")}),
    };
    return cases;
}

QWidget* findControl(QWidget* page, const ControlCase& control)
{
    int index = control.index;
    const auto children = page->findChildren<QWidget*>();
    for (QWidget* child : children) {
        if (child->inherits(control.type) && index-- == 0) {
            return child;
        }
    }
    return nullptr;
}

QVariant shownBy(QWidget* control)
{
    if (auto* button = qobject_cast<QAbstractButton*>(control)) {
        return button->isChecked();
    }
    if (auto* edit = qobject_cast<QTimeEdit*>(control)) {
        return edit->time().msecsSinceStartOfDay();
    }
    if (auto* edit = qobject_cast<QDoubleSpinBox*>(control)) {
        return edit->value();
    }
    if (auto* combo = qobject_cast<QComboBox*>(control)) {
        return combo->currentData().isValid() ? combo->currentData() : combo->currentText();
    }
    if (auto* edit = qobject_cast<QLineEdit*>(control)) {
        return edit->text();
    }
    return {};
}

std::vector<QWidget*> controlsIn(QWidget* parent)
{
    std::vector<QWidget*> controls;
    const auto children = parent->findChildren<QWidget*>();
    for (QWidget* child : children) {
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

bool isReached(QWidget* control, const QSet<QWidget*>& stops)
{
    const auto* radio = qobject_cast<QRadioButton*>(control);
    if (radio == nullptr || radio->group() == nullptr) {
        return stops.contains(control);
    }
    const auto buttons = radio->group()->buttons();
    return std::any_of(buttons.begin(), buttons.end(),
                       [&stops](QAbstractButton* button) { return stops.contains(button); });
}
