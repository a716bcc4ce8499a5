#include "mivosettingswidgets/projectsettingbox.h"

#include "folders/folderrow.h"
#include "folders/folderselection.h"
#include "mivosettingswidgets/controls.h"
#include "mivosettingswidgets/settingpageimpl.h"
#include "mivosettingswidgets/texts.h"
#include "pages/programmenu.h"

#include <mivoqutils/folders.h>
#include <mivowidgets/editbox.h>
#include <mivowidgets/pushbutton.h>
#include <mivowidgets/spineditbox.h>

#include <QtCore/QMetaMethod>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>

#include <optional>

namespace mivo::settings {

using mivo::mediadispatch::IProgram;
using mivo::mediadispatch::IProgramDispatch;
using mivo::mediadispatch::STDefaultPlayProgramInfo;
using mivo::widgets::PushButton;
using mivo::widgets::SpinEditBox;

// Long for a page: eight settings, and the program menu's slots.
class ProjectSettingBox::Impl : public SettingPageImpl
{
    Q_OBJECT

public:
    explicit Impl(ProjectSettingBox* page);

    void setProjectFileWidget(QWidget* widget);
    void showPrograms();

    // Runtime thread.
    void onIntervalChanged(int minutes) { queue("setAutoSaveProjectFilesInterval", minutes); }
    void onMaxNumChanged(int saves) { queue("setAutoSaveProjectFilesMaxNum", saves); }
    void onStoredPathChanged(const QString& path) { queue("setAutoSavePath", path); }
    void onProgramsChanged() { queue("updateDefaultPlayBtnText"); }

    std::weak_ptr<IProgramDispatch> programDispatch;
    QString checkIconPath;

public slots:
    void setAutoSaveProjectFilesInterval(const int minutes) { showValue(m_interval, minutes); }
    void setAutoSaveProjectFilesMaxNum(const int saves) { showValue(m_maxNum, saves); }
    void setAutoSavePath(const QString& path) { m_folder->setPath(path); }
    void setText(const QString& program);
    void onOpenRecentFilesCheckBoxStateChanged(int state)
    {
        submit(&IMivoSettings::setOpenRecentFiles, state == Qt::Checked);
    }
    void onOpenProjectFileDefaultPlayCheckBoxStateChanged(int state)
    {
        submit(&IMivoSettings::setOpenProjectFileDefaultPlay, state == Qt::Checked);
    }
    void onAutoSaveProjectFilesCheckBoxStateChanged(int state)
    {
        submit(&IMivoSettings::setAutoSaveProjectFiles, state == Qt::Checked);
    }
    void onIntervalSpinBoxValueChanged(double minutes);
    void onAutoSaveMaxNumSpinBoxValueChanged(double saves);
    bool onAutoSavePathChanged(const QString& path)
    {
        return submit(&IMivoSettings::setAutoSavePath, path);
    }
    void onNotPromptForSaveCheckBoxStateChanged(int state)
    {
        submit(&IMivoSettings::setNotPromptForSave, state == Qt::Checked);
    }
    void onNewProjResetOutputCheckBoxStateChanged(int state)
    {
        submit(&IMivoSettings::setNewProjResetOutput, state == Qt::Checked);
    }
    void onBrowseBtnClicked();
    void onOpenBtnClicked() { showFolder(owner, m_folder->path()); }
    void onLinkWithProjectChanged(int minutes) { showValue(m_interval, minutes); }
    void onCheckRemainSpace() { m_folder->checkSpace(); }
    void onUpdateProgramList();
    void checkedProgramGroupMenu(QAction* action);
    void checkedProgramAction(const std::weak_ptr<IProgram>& program);
    void updateDefaultPlayBtnText();

protected:
    void initSettings() override;

private:
    void layOut();
    void addTexts();
    void enableAutoSave(bool on);

    /// Has `use` called on the runtime thread; without a dispatcher, false and a warning.
    template <typename Use>
    bool withDispatch(Use use, const CallSite& site = {});
    std::optional<ProgramList> programs(const CallSite& site = {});

    StoredCheckBox* m_openRecent = new StoredCheckBox(owner);
    StoredCheckBox* m_defaultPlay = new StoredCheckBox(owner);
    ProgramButton* m_program = new ProgramButton(owner);
    StoredCheckBox* m_autoSave = new StoredCheckBox(owner);
    QLabel* m_intervalPrefix = new QLabel(owner);
    SpinEditBox* m_interval = new SpinEditBox(owner);
    QLabel* m_intervalSuffix = new QLabel(owner);
    QLabel* m_maxNumLabel = new QLabel(owner);
    SpinEditBox* m_maxNum = new SpinEditBox(owner);
    PushButton* m_spaceTip = new PushButton(owner);
    PushButton* m_open = new PushButton(owner);
    FolderRow* m_folder = new FolderRow(owner, m_spaceTip);
    StoredCheckBox* m_noPrompt = new StoredCheckBox(owner);
    StoredCheckBox* m_resetOutput = new StoredCheckBox(owner);
    QLabel* m_restartIcon = new QLabel(owner);
    QLabel* m_restartText = new QLabel(owner);
    QPointer<QWidget> m_projectFileWidget;
    QString m_programName; // empty for the one played last
};

ProjectSettingBox::Impl::Impl(ProjectSettingBox* page) : SettingPageImpl(page, "GeneralSettings")
{
    m_folder->setParent(this);
    m_interval->setRange(1, 30);
    m_maxNum->setRange(1, 20);
    m_maxNum->setValue(5);
    enableAutoSave(false);
    layOut();
    addTexts();

    connect(m_autoSave, &StoredCheckBox::toggled, this, &Impl::enableAutoSave);
    connect(m_autoSave, &StoredCheckBox::shown, this, &Impl::enableAutoSave);
    connect(m_interval, qOverload<double>(&SpinEditBox::valueChanged), this,
            &Impl::onIntervalSpinBoxValueChanged);
    connect(m_maxNum, qOverload<double>(&SpinEditBox::valueChanged), this,
            &Impl::onAutoSaveMaxNumSpinBoxValueChanged);
    connect(m_folder->browse, &PushButton::clicked, this, &Impl::onBrowseBtnClicked);
    connect(m_open, &PushButton::clicked, this, &Impl::onOpenBtnClicked);
    connect(m_spaceTip, &PushButton::clicked, m_folder, &FolderRow::checkSpace);
    connect(m_folder, &FolderRow::pathChanged, m_open,
            [this](const QString& path) { m_open->setEnabled(!path.isEmpty()); });
    connect(m_folder, &FolderRow::spaceChecked, page, &ProjectSettingBox::notifySpaceUseup);
    connect(m_program->programMenu(), &QMenu::aboutToShow, this, &Impl::onUpdateProgramList);
    connect(m_program->programMenu(), &QMenu::triggered, this, &Impl::checkedProgramGroupMenu);

    follow(&IMivoSettings::openRecentFilesChanged, m_openRecent,
           &Impl::onOpenRecentFilesCheckBoxStateChanged);
    follow(&IMivoSettings::openProjectFileDefaultPlayChanged, m_defaultPlay,
           &Impl::onOpenProjectFileDefaultPlayCheckBoxStateChanged);
    follow(&IMivoSettings::autoSaveProjectFilesChanged, m_autoSave,
           &Impl::onAutoSaveProjectFilesCheckBoxStateChanged);
    follow(&IMivoSettings::autoSaveProjectFilesIntervalChanged, &Impl::onIntervalChanged);
    follow(&IMivoSettings::autoSaveProjectFilesMaxNumChanged, &Impl::onMaxNumChanged);
    follow(&IMivoSettings::autoSavePathChanged, &Impl::onStoredPathChanged);
    follow(&IMivoSettings::notPromptForSaveChanged, m_noPrompt,
           &Impl::onNotPromptForSaveCheckBoxStateChanged);
    follow(&IMivoSettings::newProjResetOutputChanged, m_resetOutput,
           &Impl::onNewProjResetOutputCheckBoxStateChanged);
    for (auto signal :
         {&IProgramDispatch::programListChanged, &IProgramDispatch::defaultPlayProgramChanged}) {
        follow([this, signal] {
            const auto dispatch = programDispatch.lock();
            return dispatch ? ((*dispatch).*signal).connect(&Impl::onProgramsChanged, self<Impl>())
                            : sigslot::connection();
        });
    }
}

void ProjectSettingBox::Impl::layOut()
{
    owner->setObjectName(QStringLiteral("ProjectGroupBox"));
    m_openRecent->setObjectName(QStringLiteral("checkBox"));
    m_intervalPrefix->setObjectName(QStringLiteral("intervalPrefix"));
    setUsualWidth(m_interval, 72);
    m_intervalSuffix->setObjectName(QStringLiteral("intervalSuffix"));
    m_maxNumLabel->setObjectName(QStringLiteral("saveMaximumQuantity"));
    setUsualWidth(m_maxNum, 72);
    m_folder->caption->setObjectName(QStringLiteral("autoSavePath"));
    m_folder->edit->setObjectName(QStringLiteral("autoSavePathEdit"));
    m_folder->space->setObjectName(QStringLiteral("remainSpace"));
    m_spaceTip->setObjectName(QStringLiteral("shareSpaceTips"));
    setUsualHeight(m_spaceTip, 18);
    setUsualHeight(m_open, 24);
    m_open->setEnabled(false);
    m_folder->layout->insertWidget(m_folder->layout->indexOf(m_folder->clear), m_open);
    QWidget::setTabOrder(m_folder->browse, m_open);
    QWidget::setTabOrder(m_folder->clear, m_spaceTip);
    auto* resetOutput = new QHBoxLayout;
    resetOutput->addWidget(m_resetOutput);
    addRestartTip(resetOutput, m_restartIcon, m_restartText);

    auto* column = new QVBoxLayout(owner);
    column->setSpacing(12);
    column->setContentsMargins(30, 20, 0, 16);
    column->addLayout(rowOf({m_openRecent}));
    column->addLayout(rowOf({m_defaultPlay, m_program}));
    column->addLayout(rowOf(
        {m_autoSave, m_intervalPrefix, m_interval, m_intervalSuffix, m_maxNumLabel, m_maxNum}));
    column->addLayout(m_folder->layout);
    column->addLayout(rowOf({m_noPrompt}));
    column->addLayout(resetOutput);
}

void ProjectSettingBox::Impl::addTexts()
{
    addTitle("ProjectFile", "Project file");
    addText("OpenRecentFilesAfterStartup", m_openRecent, "Open recent files after startup");
    addText("AutoSaveProjectFiles", m_autoSave, "Automatically save project files");
    addText(
        "OpenProjectFileDefaultPlay",
        [this](const QString& label) {
            m_defaultPlay->setText(label);
            m_program->setAccessibleDescription(label);
        },
        "Open project files for default playback");
    addText("LastTime", [this](const QString& label) {
        m_program->programMenu()->setLastTimeText(label);
        setText(m_programName);
    });
    addText("Interval", m_intervalPrefix, m_interval, "interval");
    addText("saves", m_intervalSuffix, nullptr, "minutes Save");
    addText("SaveMaximumQuantity", m_maxNumLabel, m_maxNum, ",Save maximum quantity");
    addText("NoPromptWhenCloseSoftware", m_noPrompt,
            "Do not prompt to save the project when closing the software");
    addText("NewProjResetOutput", m_resetOutput, "new Proj Reset Output");
    addText("NewProjResetRecommand", [this](const QString& advice) {
        m_resetOutput->setToolTip(advice);
        m_resetOutput->setAccessibleDescription(advice);
    });
    m_folder->addTexts("AutoSavePath", textRegistrar());
    addText("Open", m_open);
    addText("NoSpace", m_spaceTip);
    addText("RestartTakeEffect", m_restartText);
    addNavigationText("GeneralSettings");
}

void ProjectSettingBox::Impl::enableAutoSave(bool on)
{
    for (QWidget* widget :
         QList<QWidget*>{m_intervalPrefix, m_interval, m_intervalSuffix, m_maxNumLabel, m_maxNum}) {
        widget->setEnabled(on);
    }
}

void ProjectSettingBox::Impl::initSettings()
{
    if (!startFetching()) {
        return;
    }
    const auto info = read(&IMivoSettings::getProjectFileSettings);
    if (showsFetched()) {
        m_openRecent->queueChecked(info.openRecentFiles);
        m_defaultPlay->queueChecked(info.openProjectFileDefaultPlay);
        m_autoSave->queueChecked(info.autoSaveProjectFiles);
        queue("setAutoSaveProjectFilesInterval", info.autoSaveProjectFilesInterval);
        queue("setAutoSaveProjectFilesMaxNum", info.autoSaveProjectFilesMaxNum);
        queue("setAutoSavePath", info.autoSavePath);
        m_noPrompt->queueChecked(info.notPromptForSave);
        m_resetOutput->queueChecked(info.newProjResetOutput);
    }
}

void ProjectSettingBox::Impl::onIntervalSpinBoxValueChanged(double minutes)
{
    submit(&IMivoSettings::setAutoSaveProjectFilesInterval, static_cast<int>(minutes));
}

void ProjectSettingBox::Impl::onAutoSaveMaxNumSpinBoxValueChanged(double saves)
{
    submit(&IMivoSettings::setAutoSaveProjectFilesMaxNum, static_cast<int>(saves));
}

void ProjectSettingBox::Impl::onBrowseBtnClicked()
{
    m_folder->choose(projectFolderRules, "/projectbackups",
                     [this](const QString& path) { return onAutoSavePathChanged(path); });
}

void ProjectSettingBox::Impl::setProjectFileWidget(QWidget* widget)
{
    if (m_projectFileWidget) {
        disconnect(m_projectFileWidget, nullptr, this, nullptr);
    }
    m_projectFileWidget = widget;
    if (widget == nullptr) {
        return;
    }
    const auto link = [this, widget](const char* signal, const char* slot) {
        const int index = widget->metaObject()->indexOfSignal(signal);
        if (index != -1) {
            connect(widget, widget->metaObject()->method(index), this,
                    metaObject()->method(metaObject()->indexOfSlot(slot)));
        }
    };
    link("timeChanged(int)", "onLinkWithProjectChanged(int)");
    link("checkRemainSpace()", "onCheckRemainSpace()");
}

template <typename Use>
bool ProjectSettingBox::Impl::withDispatch(Use use, const CallSite& site)
{
    // Its end, like any call of it, is to be on the runtime thread: it is not locked here.
    const bool missing =
        programDispatch.expired()
        || callInRuntime(zrRuntime, site.file, site.line, site.function, [this, &use] {
               const auto dispatch = programDispatch.lock();
               if (dispatch) {
                   use(*dispatch);
               }
               return dispatch == nullptr;
           });
    if (missing) {
        warn(site, "programDispatch is nullptr!");
    }
    return !missing;
}

std::optional<ProgramList> ProjectSettingBox::Impl::programs(const CallSite& site)
{
    std::optional<ProgramList> list;
    withDispatch([&list](const IProgramDispatch& dispatch) { list.emplace(dispatch); }, site);
    return list;
}

void ProjectSettingBox::Impl::showPrograms()
{
    if (programDispatch.expired()) {
        warn("showEvent", "programDispatch is nullptr!");
        return;
    }
    onUpdateProgramList();
    updateDefaultPlayBtnText();
}

void ProjectSettingBox::Impl::onUpdateProgramList()
{
    if (const auto list = programs()) {
        m_program->programMenu()->setPrograms(*list, QIcon(checkIconPath));
    }
}

void ProjectSettingBox::Impl::checkedProgramGroupMenu(QAction* action)
{
    if (action == nullptr) {
        warn({}, "action is nullptr!");
    } else if (!m_program->programMenu()->isLastTime(action)) {
        checkedProgramAction(ProgramMenu::programOf(*action));
    } else if (withDispatch([](IProgramDispatch& dispatch) {
                   dispatch.setDefaultPlayProgram(STDefaultPlayProgramInfo());
               })) {
        updateDefaultPlayBtnText();
    }
}

void ProjectSettingBox::Impl::checkedProgramAction(const std::weak_ptr<IProgram>& program)
{
    bool gone = program.expired();
    const auto choose = [&program, &gone](IProgramDispatch& dispatch) {
        if (const auto sharedProgram = program.lock()) {
            dispatch.setDefaultPlayProgram({false, sharedProgram->id(), sharedProgram->name()});
        } else {
            gone = true;
        }
    };
    if (!gone && withDispatch(choose) && !gone) {
        updateDefaultPlayBtnText();
    }
    if (gone) {
        warn({}, "sharedProgram is nullptr!");
    }
}

void ProjectSettingBox::Impl::updateDefaultPlayBtnText()
{
    if (const auto list = programs()) {
        queue("setText", list->chosenName());
    }
}

void ProjectSettingBox::Impl::setText(const QString& program)
{
    m_programName = program;
    m_program->setProgram(program.isEmpty() ? settings::text(QStringLiteral("LastTime")) : program);
}

ProjectSettingBox::ProjectSettingBox(QWidget* parent) : SettingPage(parent)
{
    setImpl(std::make_unique<Impl>(this));
    installEventFilter(this);
}

ProjectSettingBox::~ProjectSettingBox() = default;

void ProjectSettingBox::setProgramDispatch(std::weak_ptr<IProgramDispatch> dispatch)
{
    impl<Impl>().programDispatch = std::move(dispatch);
}

void ProjectSettingBox::setProjectFileWidget(QWidget* widget)
{
    impl<Impl>().setProjectFileWidget(widget);
}

void ProjectSettingBox::setCheckIconPath(const QString& path)
{
    impl<Impl>().checkIconPath = path;
}

bool ProjectSettingBox::eventFilter(QObject* object, QEvent* event)
{
    if (object == this && event->type() == QEvent::WindowActivate) {
        impl<Impl>().onCheckRemainSpace();
    }
    return SettingPage::eventFilter(object, event);
}

void ProjectSettingBox::showEvent(QShowEvent* event)
{
    SettingPage::showEvent(event);
    impl<Impl>().showPrograms();
}

} // namespace mivo::settings

#include "projectsettingbox.moc"
