#include "mivosettingswidgets/generalsettingbox.h"

#include "controls.h"
#include "countdownprompt.h"
#include "mivohostapi/iprogramdispatch.h"
#include "mivohostapi/iprojectfilemgr.h"
#include "settingpageimpl.h"
#include "texts.h"
#include "zrcutils/processutils.h"

#include <mivowidgets/checkbox.h>
#include <mivowidgets/combobox.h>
#include <mivowidgets/spineditbox.h>
#include <mivowidgets/timeeditbox.h>
#include <mivowidgets/tipdialog.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDate>
#include <QtCore/QElapsedTimer>
#include <QtCore/QPointer>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>

#include <utility>

namespace mivo::settings {

using mivo::widgets::CheckBox;
using mivo::widgets::ComboBox;
using mivo::widgets::SpinEditBox;
using mivo::widgets::TimeEditBox;
using mivo::widgets::TipDialog;

namespace {

constexpr int writeDelay = 100; // milliseconds
constexpr int saveAllFlag = 0x1000;

QString dayText(int day)
{
    const QString word = text(QStringLiteral("Day"));
    const QString number = QString::number(day);
    return isEnglish() ? joined({word, number}) : joined({number, word});
}

} // namespace

class GeneralSettingBox::Impl : public SettingPageImpl
{
    Q_OBJECT

public:
    explicit Impl(GeneralSettingBox* page);

    std::shared_ptr<mivo::mediadispatch::IProgramDispatch> programDispatch;
    mivo::projectfilemgr::IProjectFileMgr* projectFileMgr = nullptr;

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
    void setTimedShutdownChanged(const STMivoTimedShutdownSettings& info);
    void setTimedAutomaticRestartSettings(const STMivoTimedAutomaticRestartSettings& info);
    void setTimedAutomaticRestartChanged(const STMivoTimedAutomaticRestartSettings& info);
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
    QHBoxLayout* layOutTimed(const QList<QWidget*>& controls);

    void onStartUpCheckBoxStateChanged(int state);
    void onCloseSoftwareMinimizeCheckBoxStateChanged(int state);
    void onDelayTimeChanged(int seconds);
    void onTimedShutdownSettingsUIChanged();
    void onTimedAutomaticRestartSettingsUIChanged();
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

    STMivoTimedShutdownSettings shownShutdown() const;
    STMivoTimedAutomaticRestartSettings shownRestart() const;

    template <typename Operation>
    void report(const CallSite& site, Operation operation, bool now);

    CheckBox* m_autoStart;
    QLabel* m_delayLabel;
    SpinEditBox* m_delay;
    QLabel* m_delayUnit;
    QLabel* m_tipIcon;
    QLabel* m_tipText;
    CheckBox* m_minimize;
    CheckBox* m_restart;
    ComboBox* m_restartMonth;
    ComboBox* m_restartDay;
    TimeEditBox* m_restartTime;
    CheckBox* m_shutdown;
    ComboBox* m_shutdownWeekDay;
    TimeEditBox* m_shutdownTime;

    CountdownPrompt m_restartPrompt{{"AutomaticRestartCountdownText", "CancelAutomaticRestart",
                                     "ImmediateAutomaticRestart", "AutomaticRestartCancelText"},
                                    [this] { slotAutomaticRestartCountdownTimerTimeout(); }};
    bool m_restartLoaded = false; // until then edits are not written
    bool m_restartPending = false;
    int m_restartWrites = 0; // waiting
    CountdownPrompt m_shutdownPrompt{
        {"ShutdownCountdownText", "CancelShutdown", "ImmediateShutdown", "ShutdownCancelText"},
        [this] { slotShutdownCountdownTimerTimeout(); }};
    bool m_shutdownLoaded = false;
    bool m_shutdownActive = false;
    int m_shutdownWrites = 0;
};

GeneralSettingBox::Impl::Impl(GeneralSettingBox* page)
    : SettingPageImpl(page, QStringLiteral("GeneralSettings")), m_autoStart(new CheckBox(page)),
      m_delayLabel(new QLabel(page)), m_delay(new SpinEditBox(page)), m_delayUnit(new QLabel(page)),
      m_tipIcon(new QLabel(page)), m_tipText(new QLabel(page)), m_minimize(new CheckBox(page)),
      m_restart(new CheckBox(page)), m_restartMonth(new ComboBox(page)),
      m_restartDay(new ComboBox(page)), m_restartTime(new TimeEditBox(page)),
      m_shutdown(new CheckBox(page)), m_shutdownWeekDay(new ComboBox(page)),
      m_shutdownTime(new TimeEditBox(page))
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

    const auto indexChanged = qOverload<int>(&ComboBox::currentIndexChanged);
    const auto shutdownChanged = &Impl::onTimedShutdownSettingsUIChanged;
    connect(m_shutdown, &CheckBox::stateChanged, this, shutdownChanged);
    connect(m_shutdownWeekDay, indexChanged, this, shutdownChanged);
    connect(m_shutdownTime, &TimeEditBox::timeChanged, this, shutdownChanged);
    const auto restartChanged = &Impl::onTimedAutomaticRestartSettingsUIChanged;
    connect(m_restart, &CheckBox::stateChanged, this, restartChanged);
    connect(m_restartMonth, indexChanged, this, &Impl::slotTimedAutomaticRestartMonthComBoxChanged);
    connect(m_restartMonth, indexChanged, this, restartChanged);
    connect(m_restartDay, indexChanged, this, restartChanged);
    connect(m_restartTime, &TimeEditBox::timeChanged, this, restartChanged);
    followStore();
}

void GeneralSettingBox::Impl::layOut()
{
    owner->setObjectName(QStringLiteral("generalSettingGroupBox"));
    owner->setFixedHeight(160);
    m_delayLabel->setObjectName(QStringLiteral("delayLabel"));
    m_delay->setFixedWidth(72);
    m_delay->setAlignment(Qt::AlignLeft);
    m_delay->setContextMenuPolicy(Qt::NoContextMenu);
    m_delayUnit->setObjectName(QStringLiteral("suffixDiscriable"));
    m_restartMonth->setFixedWidth(90);
    m_restartDay->setFixedWidth(80);
    m_shutdownWeekDay->setFixedWidth(72);
    for (TimeEditBox* time : {m_restartTime, m_shutdownTime}) {
        time->setDisplayFormat(QStringLiteral("hh:mm:ss"));
        time->setFixedWidth(100);
        time->setContextMenuPolicy(Qt::NoContextMenu);
        time->setFocusPolicy(Qt::WheelFocus);
        time->setTime(QTime(0, 0));
    }

    auto* start = new QHBoxLayout;
    start->setSpacing(0);
    start->addWidget(m_autoStart);
    start->addSpacing(14);
    start->addWidget(m_delayLabel);
    start->addSpacing(6);
    start->addWidget(m_delay);
    start->addSpacing(6);
    start->addWidget(m_delayUnit);
    start->addSpacing(2);
    addTip(start, m_tipIcon, m_tipText, 2);
    start->addStretch();
    auto* minimize = new QHBoxLayout;
    minimize->addWidget(m_minimize);
    minimize->addSpacing(8);
    minimize->addWidget(new QLabel(owner));
    minimize->addStretch();

    auto* column = new QVBoxLayout(owner);
    column->setSpacing(12);
    column->setContentsMargins(30, 20, 0, 16);
    column->addLayout(start);
    column->addLayout(minimize);
    column->addLayout(layOutTimed({m_restart, m_restartMonth, m_restartDay, m_restartTime}));
    column->addLayout(layOutTimed({m_shutdown, m_shutdownWeekDay, m_shutdownTime}));
}

QHBoxLayout* GeneralSettingBox::Impl::layOutTimed(const QList<QWidget*>& controls)
{
    auto* row = new QHBoxLayout;
    for (QWidget* control : controls) {
        row->addWidget(control);
    }
    row->addStretch();
    return row;
}

void GeneralSettingBox::Impl::addTexts()
{
    text(QStringLiteral("StartCloseGroup"),
         [this](const QString& title) { owner->setTitle(title); });
    text(QStringLiteral("StartupSelfStart"),
         [this](const QString& label) { m_autoStart->setText(label); });
    text(QStringLiteral("Delay"), m_delayLabel, m_delay);
    text(QStringLiteral("Seconds"), m_delayUnit);
    text(QStringLiteral("SlowLoadingSoundCardPrompt"), m_tipText);
    text(QStringLiteral("MinimizeToTrayWhenClosingSoftware"),
         [this](const QString& label) { m_minimize->setText(label); });
    text(QStringLiteral("TimedAutomaticRestart"), [this](const QString& label) {
        m_restart->setText(label);
        nameAll({m_restartMonth, m_restartDay, m_restartTime}, label);
    });
    itemTexts(m_restartMonth, {"EveryMonth", "January", "February", "March", "April", "May", "June",
                               "July", "August", "September", "October", "November", "December"});
    text(QStringLiteral("EveryDay"),
         [this](const QString& every) { m_restartDay->setItemText(0, every); });
    // Set by the first translation in any case: where its place is depends on the language.
    text(
        QStringLiteral("Day"),
        [this](const QString& /*word*/) {
            for (int day = 1; day < m_restartDay->count(); ++day) {
                m_restartDay->setItemText(day, dayText(day));
            }
        },
        QStringLiteral("-"));
    text(QStringLiteral("TimedShutdown"), [this](const QString& label) {
        m_shutdown->setText(label);
        nameAll({m_shutdownWeekDay, m_shutdownTime}, label);
    });
    itemTexts(m_shutdownWeekDay, {"EveryDay", "Monday", "Tuesday", "Wednesday", "Thursday",
                                  "Friday", "Saturday", "Sunday"});
    navigationText(QStringLiteral("GeneralSettings"));
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

void GeneralSettingBox::Impl::onStartUpCheckBoxStateChanged(int state)
{
    submit("onStartUpCheckBoxStateChanged", &IMivoSettings::setAutoStart, state == Qt::Checked);
}

void GeneralSettingBox::Impl::onCloseSoftwareMinimizeCheckBoxStateChanged(int state)
{
    submit("onCloseSoftwareMinimizeCheckBoxStateChanged", &IMivoSettings::setCloseSoftWareMinimize,
           state == Qt::Checked);
}

void GeneralSettingBox::Impl::onDelayTimeChanged(int seconds)
{
    submit("onDelayTimeChanged", &IMivoSettings::setAutoStartDelayTime, seconds);
}

// --- The schedules ---

STMivoTimedShutdownSettings GeneralSettingBox::Impl::shownShutdown() const
{
    return {m_shutdown->isChecked(), m_shutdownWeekDay->currentIndex(), shownTime(m_shutdownTime)};
}

STMivoTimedAutomaticRestartSettings GeneralSettingBox::Impl::shownRestart() const
{
    return {m_restart->isChecked(), m_restartMonth->currentIndex(), m_restartDay->currentIndex(),
            shownTime(m_restartTime)};
}

void GeneralSettingBox::Impl::setTimedShutdownSettings(const STMivoTimedShutdownSettings& info)
{
    setTimedShutdownChanged(info);
    m_shutdownLoaded = true;
}

void GeneralSettingBox::Impl::setTimedShutdownChanged(const STMivoTimedShutdownSettings& info)
{
    if (info == shownShutdown()) {
        return;
    }
    showValue(m_shutdown, info.enabled);
    showIndex(m_shutdownWeekDay, info.weekDayIndex);
    showTime(m_shutdownTime, info.time);
}

void GeneralSettingBox::Impl::setTimedAutomaticRestartSettings(
    const STMivoTimedAutomaticRestartSettings& info)
{
    setTimedAutomaticRestartChanged(info);
    m_restartLoaded = true;
}

void GeneralSettingBox::Impl::setTimedAutomaticRestartChanged(
    const STMivoTimedAutomaticRestartSettings& info)
{
    if (info == shownRestart()) {
        return;
    }
    showValue(m_restart, info.enabled);
    // The list of days stays that of the month before; kept on purpose. A day that it lacks is
    // added, so that it is shown and not lost with the next edit.
    showIndex(m_restartMonth, info.monthIndex);
    for (int day = m_restartDay->count(); day <= info.dayIndex; ++day) {
        m_restartDay->addItem(dayText(day));
    }
    showIndex(m_restartDay, info.dayIndex);
    showTime(m_restartTime, info.time);
}

void GeneralSettingBox::Impl::setShutdown(bool on)
{
    auto info = shownShutdown();
    info.enabled = on;
    queue("setTimedShutdownSettings", info);
}

void GeneralSettingBox::Impl::slotTimedAutomaticRestartMonthComBoxChanged(int index)
{
    const QDate today = QDate::currentDate();
    const int days = QDate(today.year(), index == 0 ? today.month() : index, 1).daysInMonth();
    {
        const QSignalBlocker blocker(m_restartDay);
        const int chosen = m_restartDay->currentIndex();
        m_restartDay->clear();
        m_restartDay->addItem(settings::text(QStringLiteral("EveryDay")));
        for (int day = 1; day <= days; ++day) {
            m_restartDay->addItem(dayText(day));
        }
        m_restartDay->setCurrentIndex(qBound(0, chosen, days));
    }
    // Together with the month's own change this sends two calls; kept on purpose.
    if (m_restartLoaded && hasStore("slotTimedAutomaticRestartMonthComBoxChanged")) {
        ++m_restartWrites;
        QTimer::singleShot(writeDelay, this, &Impl::delaySetTimedRestart);
    }
}

void GeneralSettingBox::Impl::onTimedShutdownSettingsUIChanged()
{
    if (!m_shutdownLoaded) {
        return;
    }
    QV::SpdlogApplication::instance().logger()->info(
        "tmp tmp tmp client notify server modify data");
    if (hasStore("onTimedShutdownSettingsUIChanged")) {
        ++m_shutdownWrites;
        QTimer::singleShot(writeDelay, this, &Impl::delaySetTimedShutdown);
    }
}

void GeneralSettingBox::Impl::onTimedAutomaticRestartSettingsUIChanged()
{
    if (m_restartLoaded && hasStore("onTimedAutomaticRestartSettingsUIChanged")) {
        ++m_restartWrites;
        QTimer::singleShot(writeDelay, this, &Impl::delaySetTimedRestart);
    }
}

void GeneralSettingBox::Impl::delaySetTimedShutdown()
{
    --m_shutdownWrites;
    submit("delaySetTimedShutdown", &IMivoSettings::setTimedShutdownSettings, shownShutdown());
}

void GeneralSettingBox::Impl::delaySetTimedRestart()
{
    --m_restartWrites;
    submit("delaySetTimedRestart", &IMivoSettings::setTimedAutomaticRestartSettings,
           shownRestart());
}

void GeneralSettingBox::Impl::writePending()
{
    if (m_shutdownWrites > 0) {
        delaySetTimedShutdown();
    }
    if (m_restartWrites > 0) {
        delaySetTimedRestart();
    }
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
void GeneralSettingBox::Impl::report(const CallSite& site, Operation operation, bool now)
{
    if (now) {
        saveProjectFile();
    }
    if (sharedSettings == nullptr) {
        warn(site, "sharedSettings is nullptr"); // without "!", kept on purpose
        return;
    }
    submit(site, operation, now);
}

void GeneralSettingBox::Impl::slotAutomaticRestartCountdownTimerTimeout()
{
    // The prompt's own answer is reported after this; both calls are made on purpose.
    if (m_restartPrompt.tick()) {
        report("slotAutomaticRestartCountdownTimerTimeout",
               &IMivoSettings::executeTimedAutomaticRestart, true);
    }
}

void GeneralSettingBox::Impl::slotShutdownCountdownTimerTimeout()
{
    if (m_shutdownPrompt.tick()) {
        m_shutdownActive = false;
        report("slotShutdownCountdownTimerTimeout", &IMivoSettings::executeTimedShutdown, true);
    }
}

void GeneralSettingBox::Impl::showTimedAutomaticRestartCount(int seconds)
{
    if (m_shutdownActive) {
        m_restartPending = true;
        return;
    }
    if (const auto result = m_restartPrompt.count(owner, seconds)) {
        report("showTimedAutomaticRestartCount", &IMivoSettings::executeTimedAutomaticRestart,
               *result == TipDialog::accepted);
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
    if (*result != TipDialog::accepted && std::exchange(m_restartPending, false)) {
        const QPointer<Impl> self(this);
        // The constant has nothing to do with the store's seconds; kept on purpose.
        showTimedAutomaticRestartCount(10000 - static_cast<int>(elapsed.elapsed() / 1000));
        if (!self) {
            return;
        }
    }
    report("showTimedShutdownCount", &IMivoSettings::executeTimedShutdown,
           *result == TipDialog::accepted);
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
        report("setLinkRestart", &IMivoSettings::executeTimedAutomaticRestart, true);
    }
}

void GeneralSettingBox::Impl::setLinkShutdown(bool link)
{
    m_shutdownPrompt.dismiss();
    if (link) {
        report("setLinkShutdown", &IMivoSettings::executeTimedShutdown, true);
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

void GeneralSettingBox::setSettings(MivoSettings* settings)
{
    if (settings == nullptr) {
        warn("setSettings", "sharedSettings is nullptr"); // without "!", kept on purpose
        return;
    }
    impl<Impl>().setSettings(settings);
}

void GeneralSettingBox::unsetSettings()
{
    impl<Impl>().unsetSettings();
}

} // namespace mivo::settings

#include "generalsettingbox.moc"
