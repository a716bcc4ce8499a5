#include "mivosettingswidgets/generalsettingbox.h"

#include "mivohostapi/iprogramdispatch.h"
#include "mivohostapi/iprojectfilemgr.h"
#include "mivosettingswidgets/controls.h"
#include "mivosettingswidgets/settingpageimpl.h"
#include "pages/countdownprompt.h"
#include "pages/timedrows.h"
#include "zrcutils/processutils.h"

#include <mivowidgets/checkbox.h>
#include <mivowidgets/spineditbox.h>
#include <mivowidgets/tipdialog.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QPointer>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>

#include <utility>

namespace mivo::settings {

using mivo::widgets::CheckBox;
using mivo::widgets::SpinEditBox;
using mivo::widgets::TipDialog;

namespace {

constexpr int saveAllFlag = 0x1000;

} // namespace

class GeneralSettingBox::Impl : public SettingPageImpl
{
    Q_OBJECT

public:
    explicit Impl(GeneralSettingBox* page);

    std::shared_ptr<mivo::mediadispatch::IProgramDispatch> programDispatch;
    mivo::projectfilemgr::IProjectFileMgr* projectFileMgr = nullptr;

    void setSettings(MivoSettings* settings) override
    {
        if (settings == nullptr) {
            warn({}, "sharedSettings is nullptr"); // without "!", kept on purpose
        } else {
            SettingPageImpl::setSettings(settings);
        }
    }

    /// Writes at once what is waiting to be written.
    void writePending();

    void saveProjectFile();

public slots:
    // In this order: the host finds them by their index.
    void slotTimedAutomaticRestartMonthComBoxChanged(int index);
    void slotAutomaticRestartCountdownTimerTimeout();
    void slotShutdownCountdownTimerTimeout();
    void setAutoStart(bool state) { showValue(m_autoStart, state); }
    void setAutoStartDelayTime(int time) { showValue(m_delay, time); }
    void setCloseSoftWareMinimize(bool state) { showValue(m_minimize, state); }
    void setTimedShutdownSettings(const STMivoTimedShutdownSettings& info);
    void setTimedShutdownChanged(const STMivoTimedShutdownSettings& info) { m_shutdown.show(info); }
    void setTimedAutomaticRestartSettings(const STMivoTimedAutomaticRestartSettings& info);
    void setTimedAutomaticRestartChanged(const STMivoTimedAutomaticRestartSettings& info)
    {
        m_restart.show(info);
    }
    void setSettingsInfo(const STMivoAutoStartSettings& info);
    void setShutdown(bool on);
    void setLinkRestart(bool link);
    void setLinkShutdown(bool link);
    void showTimedAutomaticRestartCount(int seconds);
    void showTimedShutdownCount(int seconds);

protected:
    void initSettings() override;

private:
    void layOut();
    void addTexts();
    void followStore();

    void onStartUpCheckBoxStateChanged(int state)
    {
        submit(&IMivoSettings::setAutoStart, state == Qt::Checked);
    }
    void onCloseSoftwareMinimizeCheckBoxStateChanged(int state)
    {
        submit(&IMivoSettings::setCloseSoftWareMinimize, state == Qt::Checked);
    }
    void onDelayTimeChanged(int seconds) { submit(&IMivoSettings::setAutoStartDelayTime, seconds); }
    void onTimedShutdownSettingsUIChanged();
    void onTimedAutomaticRestartSettingsUIChanged();
    void writeRestartLater(const CallSite& site = {});
    void delaySetTimedShutdown();
    void delaySetTimedRestart();

    // Store to slot, on the runtime thread.
    void onAutoStartChanged(bool on) { queue("setAutoStart", on); }
    void onCloseSoftWareMinimizeChanged(bool on) { queue("setCloseSoftWareMinimize", on); }
    void onAutoStartDelayTimeChanged(int time) { queue("setAutoStartDelayTime", time); }
    void onAutoStartSettingsChanged(const STMivoAutoStartSettings& info)
    {
        queue("setSettingsInfo", info);
    }
    void onTimedShutdownLoaded(const STMivoTimedShutdownSettings& info)
    {
        queue("setTimedShutdownSettings", info);
    }
    void onTimedShutdownChanged(const STMivoTimedShutdownSettings& info)
    {
        queue("setTimedShutdownChanged", info);
    }
    void onTimedShutdownEnabledChanged(bool on) { queue("setShutdown", on); }
    void onTimedRestartLoaded(const STMivoTimedAutomaticRestartSettings& info)
    {
        queue("setTimedAutomaticRestartSettings", info);
    }
    void onTimedRestartChanged(const STMivoTimedAutomaticRestartSettings& info)
    {
        queue("setTimedAutomaticRestartChanged", info);
    }
    void onTimedShutdownCount(int seconds) { queue("showTimedShutdownCount", seconds); }
    void onTimedRestartCount(int seconds) { queue("showTimedAutomaticRestartCount", seconds); }
    void onLinkShutdown(bool link) { queueLink("setLinkShutdown", link); }
    void onLinkRestart(bool link) { queueLink("setLinkRestart", link); }
    void queueLink(const char* slot, bool link);

    template <typename Operation>
    void report(Operation operation, bool now, const CallSite& site = {});

    CheckBox* m_autoStart = new CheckBox(owner);
    QLabel* m_delayLabel = new QLabel(owner);
    SpinEditBox* m_delay = new SpinEditBox(owner);
    QLabel* m_delayUnit = new QLabel(owner);
    QLabel* m_tipIcon = new QLabel(owner);
    QLabel* m_tipText = new QLabel(owner);
    CheckBox* m_minimize = new CheckBox(owner);
    RestartRow m_restart;
    ShutdownRow m_shutdown;

    CountdownPrompt m_restartPrompt{{"AutomaticRestartCountdownText", "CancelAutomaticRestart",
                                     "ImmediateAutomaticRestart", "AutomaticRestartCancelText"},
                                    [this] { slotAutomaticRestartCountdownTimerTimeout(); }};
    bool m_restartLoaded = false; // until then edits are not written
    bool m_restartPending = false;
    DelayedWrite m_restartWrite{[this] { delaySetTimedRestart(); }};
    CountdownPrompt m_shutdownPrompt{
        {"ShutdownCountdownText", "CancelShutdown", "ImmediateShutdown", "ShutdownCancelText"},
        [this] { slotShutdownCountdownTimerTimeout(); }};
    bool m_shutdownLoaded = false;
    bool m_shutdownActive = false;
    DelayedWrite m_shutdownWrite{[this] { delaySetTimedShutdown(); }};
};

GeneralSettingBox::Impl::Impl(GeneralSettingBox* page)
    : SettingPageImpl(page, "GeneralSettings"), m_restart(page), m_shutdown(page)
{
    m_delay->setRange(0, 300);
    layOut();
    addTexts();
    slotTimedAutomaticRestartMonthComBoxChanged(0);

    connect(m_autoStart, &CheckBox::stateChanged, this, &Impl::onStartUpCheckBoxStateChanged);
    connect(m_minimize, &CheckBox::stateChanged, this,
            &Impl::onCloseSoftwareMinimizeCheckBoxStateChanged);
    connect(m_delay, qOverload<double>(&SpinEditBox::valueChanged), this,
            [this](double seconds) { onDelayTimeChanged(static_cast<int>(seconds)); });

    connect(&m_shutdown, &TimedRow::edited, this, &Impl::onTimedShutdownSettingsUIChanged);
    connect(&m_restart, &TimedRow::edited, this, &Impl::onTimedAutomaticRestartSettingsUIChanged);
    connect(&m_restart, &RestartRow::monthChosen, this,
            &Impl::slotTimedAutomaticRestartMonthComBoxChanged);
    followStore();
}

void GeneralSettingBox::Impl::layOut()
{
    owner->setObjectName(QStringLiteral("generalSettingGroupBox"));
    setUsualHeight(owner, 160);
    m_delayLabel->setObjectName(QStringLiteral("delayLabel"));
    setUsualWidth(m_delay, 72);
    m_delay->setAlignment(Qt::AlignLeft);
    m_delay->setContextMenuPolicy(Qt::NoContextMenu);
    m_delayUnit->setObjectName(QStringLiteral("suffixDiscriable"));

    auto* start = spacedRow({{m_autoStart, 14}, {m_delayLabel, 6}, {m_delay, 6}, {m_delayUnit, 2}});
    addTip(start, m_tipIcon, m_tipText, 2);
    start->addStretch();
    auto* minimize = rowOf({m_minimize, new QLabel(owner)});
    minimize->setSpacing(8);

    auto* column = new QVBoxLayout(owner);
    column->setSpacing(12);
    column->setContentsMargins(30, 20, 0, 16);
    column->addLayout(start);
    column->addLayout(minimize);
    column->addLayout(m_restart.layout);
    column->addLayout(m_shutdown.layout);
}

void GeneralSettingBox::Impl::addTexts()
{
    addTitle("StartCloseGroup");
    addText("StartupSelfStart", m_autoStart);
    addText("Delay", m_delayLabel, m_delay);
    addText("Seconds", m_delayUnit);
    addText("SlowLoadingSoundCardPrompt", m_tipText);
    addText("MinimizeToTrayWhenClosingSoftware", m_minimize);
    m_restart.addTexts(*this);
    m_shutdown.addTexts(*this);
    addNavigationText("GeneralSettings");
}

void GeneralSettingBox::Impl::followStore()
{
    follow(&IMivoSettings::autoStartChanged, &Impl::onAutoStartChanged);
    follow(&IMivoSettings::closeSoftWareMinimizeChanged, &Impl::onCloseSoftWareMinimizeChanged);
    follow(&IMivoSettings::autoStartDelayTimeChanged, &Impl::onAutoStartDelayTimeChanged);
    follow(&IMivoSettings::autoStartSettingsChanged, &Impl::onAutoStartSettingsChanged);
    follow(&IMivoSettings::timedShutdownSettingsLoaded, &Impl::onTimedShutdownLoaded);
    follow(&IMivoSettings::timedShutdownSettingsChanged, &Impl::onTimedShutdownChanged);
    follow(&IMivoSettings::timedShutdownEnabledChanged, &Impl::onTimedShutdownEnabledChanged);
    follow(&IMivoSettings::timedAutomaticRestartSettingsLoaded, &Impl::onTimedRestartLoaded);
    follow(&IMivoSettings::timedAutomaticRestartSettingsChanged, &Impl::onTimedRestartChanged);
    follow(&IMivoSettings::timedShutdownCount, &Impl::onTimedShutdownCount);
    follow(&IMivoSettings::timedAutomaticRestartCount, &Impl::onTimedRestartCount);
    follow(&IMivoSettings::linkShutdown, &Impl::onLinkShutdown);
    follow(&IMivoSettings::linkRestart, &Impl::onLinkRestart);
}

void GeneralSettingBox::Impl::initSettings()
{
    if (startFetching()) {
        fetch(&IMivoSettings::getAutoStartSettings, "setSettingsInfo");
        fetch(&IMivoSettings::getTimedShutdownSettings, "setTimedShutdownSettings");
        fetch(&IMivoSettings::getTimedAutomaticRestartSettings, "setTimedAutomaticRestartSettings");
    }
}

void GeneralSettingBox::Impl::setSettingsInfo(const STMivoAutoStartSettings& info)
{
    setAutoStart(info.autoStart);
    setAutoStartDelayTime(info.autoStartDelayTime);
    setCloseSoftWareMinimize(info.closeSoftWareMinimize);
}

// --- The schedules ---

void GeneralSettingBox::Impl::setTimedShutdownSettings(const STMivoTimedShutdownSettings& info)
{
    setTimedShutdownChanged(info);
    m_shutdownLoaded = true;
}

void GeneralSettingBox::Impl::setTimedAutomaticRestartSettings(
    const STMivoTimedAutomaticRestartSettings& info)
{
    setTimedAutomaticRestartChanged(info);
    m_restartLoaded = true;
}

void GeneralSettingBox::Impl::setShutdown(bool on)
{
    auto info = m_shutdown.shown();
    info.enabled = on;
    queue("setTimedShutdownSettings", info);
}

void GeneralSettingBox::Impl::slotTimedAutomaticRestartMonthComBoxChanged(int index)
{
    m_restart.fillDays(index);
    // Together with the month's own change this sends two calls; kept on purpose.
    writeRestartLater();
}

void GeneralSettingBox::Impl::onTimedShutdownSettingsUIChanged()
{
    if (!m_shutdownLoaded) {
        return;
    }
    QV::SpdlogApplication::instance().logger()->info(
        "tmp tmp tmp client notify server modify data");
    if (hasStore()) {
        m_shutdownWrite.start();
    }
}

void GeneralSettingBox::Impl::onTimedAutomaticRestartSettingsUIChanged()
{
    writeRestartLater();
}

void GeneralSettingBox::Impl::writeRestartLater(const CallSite& site)
{
    if (m_restartLoaded && hasStore(site)) {
        m_restartWrite.start();
    }
}

void GeneralSettingBox::Impl::delaySetTimedShutdown()
{
    submit(&IMivoSettings::setTimedShutdownSettings, m_shutdown.shown());
}

void GeneralSettingBox::Impl::delaySetTimedRestart()
{
    submit(&IMivoSettings::setTimedAutomaticRestartSettings, m_restart.shown());
}

void GeneralSettingBox::Impl::writePending()
{
    m_shutdownWrite.flush();
    m_restartWrite.flush();
}

// --- The prompts ---

void GeneralSettingBox::Impl::saveProjectFile()
{
    if (const auto dispatch = programDispatch) {
        callInRuntime(zrRuntime, __FILE__, __LINE__, "saveProjectFile", [&dispatch] {
            if (dispatch->isUsable()) {
                dispatch->saveProjectFile(saveAllFlag);
            }
        });
    }
    if (projectFileMgr != nullptr) {
        projectFileMgr->saveCompleted();
    }
}

template <typename Operation>
void GeneralSettingBox::Impl::report(Operation operation, bool now, const CallSite& site)
{
    if (now) {
        saveProjectFile();
    }
    if (sharedSettings == nullptr) {
        warn(site, "sharedSettings is nullptr"); // without "!", kept on purpose
        return;
    }
    submit(operation, now, site);
}

void GeneralSettingBox::Impl::slotAutomaticRestartCountdownTimerTimeout()
{
    // The prompt's own answer is reported after this; both calls are made on purpose.
    if (m_restartPrompt.tick()) {
        report(&IMivoSettings::executeTimedAutomaticRestart, true);
    }
}

void GeneralSettingBox::Impl::slotShutdownCountdownTimerTimeout()
{
    if (m_shutdownPrompt.tick()) {
        m_shutdownActive = false;
        report(&IMivoSettings::executeTimedShutdown, true);
    }
}

void GeneralSettingBox::Impl::showTimedAutomaticRestartCount(int seconds)
{
    if (m_shutdownActive) {
        m_restartPending = true;
        return;
    }
    if (const auto result = m_restartPrompt.count(owner, seconds)) {
        report(&IMivoSettings::executeTimedAutomaticRestart, *result == TipDialog::accepted);
    }
}

void GeneralSettingBox::Impl::showTimedShutdownCount(int seconds)
{
    m_shutdownActive = true;
    QElapsedTimer elapsed;
    elapsed.start();
    const auto result = m_shutdownPrompt.count(owner, seconds);
    if (!result) {
        return;
    }
    m_shutdownActive = false;
    const bool isRestartDue = std::exchange(m_restartPending, false);
    if (isRestartDue && m_shutdownPrompt.isMissed()) {
        report(&IMivoSettings::executeTimedAutomaticRestart, false); // so that the host tells it
    } else if (isRestartDue && *result != TipDialog::accepted) {
        const QPointer<Impl> self(this);
        // The constant has nothing to do with the store's seconds; kept on purpose.
        showTimedAutomaticRestartCount(10000 - static_cast<int>(elapsed.elapsed() / 1000));
        if (!self) {
            return;
        }
    }
    report(&IMivoSettings::executeTimedShutdown, *result == TipDialog::accepted);
}

void GeneralSettingBox::Impl::queueLink(const char* slot, bool link)
{
    const QString shell = QCoreApplication::applicationName() + QStringLiteral("_Shell.exe");
    if (ProcessUtils::processIsRunning(shell.toStdString())) {
        queue(slot, link);
    }
}

void GeneralSettingBox::Impl::setLinkRestart(bool link)
{
    m_restartPrompt.dismiss();
    if (link) {
        report(&IMivoSettings::executeTimedAutomaticRestart, true);
    }
}

void GeneralSettingBox::Impl::setLinkShutdown(bool link)
{
    m_shutdownPrompt.dismiss();
    if (link) {
        report(&IMivoSettings::executeTimedShutdown, true);
    }
}

GeneralSettingBox::GeneralSettingBox(QWidget* parent) : SettingPage(parent)
{
    setImpl(std::make_unique<Impl>(this));
}

GeneralSettingBox::~GeneralSettingBox()
{
    impl<Impl>().writePending();
}

void GeneralSettingBox::setProgramDispatch(
    std::shared_ptr<mivo::mediadispatch::IProgramDispatch> dispatch)
{
    impl<Impl>().programDispatch = std::move(dispatch);
}

void GeneralSettingBox::setProjectFileMgr(mivo::projectfilemgr::IProjectFileMgr* manager)
{
    impl<Impl>().projectFileMgr = manager;
}

} // namespace mivo::settings

#include "generalsettingbox.moc"
