#include "mivosettingswidgets/audiosettingbox.h"

#include "kit/standardmetatypes.h"
#include "mivohostapi/imsgcentermgr.h"
#include "mivohostapi/iprogramdispatch.h"
#include "mivosettingswidgets/controls.h"
#include "mivosettingswidgets/settingpageimpl.h"
#include "mivosettingswidgets/texts.h"
#include "mivosettingswidgets/virtualmappingwidget.h"

#include <mivowidgets/pushbutton.h>

#include <QtCore/QTimer>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QScrollArea>

#include <algorithm>
#include <deque>
#include <map>
#include <optional>
#include <utility>

namespace mivo::settings {

using mivo::STSoundCardChangeInfo;
using mivo::mediadispatch::IProgramDispatch;
using mivo::projectfilemgr::IProjectFileMgr;
using mivo::widgets::PushButton;
using velorn::mediadispatch::STSoundCardMappingInfo;
using velorn::msgcenter::IMsgCenterMgr;

namespace {

/// How much is made in one turn of the event loop, counted in columns: some hundred of them would
/// hold up the frames that come meanwhile. An editor without any takes as long as two columns.
constexpr int columnsInTurn = 32;
constexpr int columnsForEditor = 2;

} // namespace

class AudioSettingBox::Impl : public SettingPageImpl
{
    Q_OBJECT

public:
    explicit Impl(AudioSettingBox* page);

    IMsgCenterMgr* msgCenter = nullptr;
    std::shared_ptr<IProgramDispatch> programDispatch;
    IProjectFileMgr* projectFileMgr = nullptr;

    /// Those as well that are not filed under the id of their mapping.
    QList<VirtualMappingWidget*> shownEditors() const
    {
        return owner->findChildren<VirtualMappingWidget*>(QString(), Qt::FindDirectChildrenOnly);
    }

    /// Applies to every editor that is filed, in the order of their ids.
    template <typename Change>
    void forEachEditor(Change change)
    {
        const LayoutPause pause(m_column);
        for (const auto& [id, editor] : m_editors) {
            change(*editor);
        }
    }

    void setSettings(MivoSettings* settings) override
    {
        if (isStore(settings, "initSettings")) {
            SettingPageImpl::setSettings(settings);
        } else {
            unsetSettings();
        }
    }
    void unsetSettings() override
    {
        SettingPageImpl::unsetSettings();
        sharedSettings = nullptr;
        for (VirtualMappingWidget* editor : shownEditors()) {
            editor->setSettings(nullptr);
        }
    }

public slots:
    void onMappingsInit(const STAllDeviceSoundCardMappings& all);
    void onMappingAdded(const STSoundCardMappingInfo& info);
    void onMappingChanged(const STSoundCardChangeInfo& change);
    void onMappingDeleted(const STSoundCardMappingInfo& info);
    void onSoundCardEnableSet(const STLocalSoundCardList& list);
    void onSoundCardDisableSet(const STLocalSoundCardList& list);
    void onClusterNodeSoundCardChanged();
    void setSoundCardMismatchMsg(const STSoundCardMismatchInfo& info);
    void deleteClusterDeviceSoundCard(const std::vector<std::string>& devices);
    void showDeviceSoundCards(const STDeviceSoundCardVisibleInfo& info);
    void slotAddMapping();
    void slotMappingInfoChanged(const STSoundCardChangeInfo& change);

protected:
    void initSettings() override;

private:
    void layOut();
    void followStore();

    using Reset = void (VirtualMappingWidget::*)(const STSoundCardMappingsInfo& known);
    static constexpr Reset resetOffers = &VirtualMappingWidget::resetSoundCardsCombobox;
    static constexpr Reset resetColumns = &VirtualMappingWidget::resetSoundCardWidget;
    std::optional<STSoundCardMappingsInfo> readMappings(const CallSite& site)
    {
        return readIfThere(zrRuntime, site, &IMivoSettings::getSoundCardMappings, sharedSettings);
    }

    /// Has every editor but one show what there is now, if that can be read.
    void resetEditors(Reset reset, const CallSite& site,
                      const VirtualMappingWidget* except = nullptr);

    /// Makes the editors of mappings that wait for theirs, as many as one turn of the event loop
    /// has room for, and the others in later turns, or when there is a store again. Each shows what
    /// there is then, so that no change needs to reach it before.
    void makeEditors(const CallSite& site);
    VirtualMappingWidget* makeEditor(const STSoundCardMappingInfo& info);
    void deleteEditor(VirtualMappingWidget* editor);
    auto findWaiting(std::uint64_t id)
    {
        return std::find_if(m_waiting.begin(), m_waiting.end(),
                            [id](const STSoundCardMappingInfo& info) { return info.id == id; });
    }
    /// Keeps room for the editors that wait, so that the page does not grow, and is not painted
    /// again, with each of them.
    void reserve();

    void setAddedMappingBtnState();
    void setAddTip();
    /// Has the user who added a mapping see it and name it.
    void focusNew(VirtualMappingWidget* editor);

    // Store to slot, on the thread on which the store announces it.
    void mappingsInit(const STAllDeviceSoundCardMappings& all) { queue("onMappingsInit", all); }
    void mappingAdded(const STSoundCardMappingInfo& info) { queue("onMappingAdded", info); }
    void mappingChanged(const STSoundCardChangeInfo& info) { queue("onMappingChanged", info); }
    void mappingDeleted(const STSoundCardMappingInfo& info) { queue("onMappingDeleted", info); }
    void soundCardEnabled(const STLocalSoundCardList& list) { queue("onSoundCardEnableSet", list); }
    void soundCardDisabled(const STLocalSoundCardList& list)
    {
        queue("onSoundCardDisableSet", list);
    }
    void clusterChanged() { queue("onClusterNodeSoundCardChanged"); }
    void mismatch(const STSoundCardMismatchInfo& info) { queue("setSoundCardMismatchMsg", info); }
    void clusterDeleted(const std::vector<std::string>& devices)
    {
        queue("deleteClusterDeviceSoundCard", devices);
    }
    void setDeviceSoundCardVisible(const STDeviceSoundCardVisibleInfo& info);

    PushButton* m_add = new PushButton(owner);
    QLabel* m_info = new QLabel(owner);
    QVBoxLayout* m_column = new QVBoxLayout(owner);
    std::map<std::uint64_t, VirtualMappingWidget*> m_editors;
    std::deque<STSoundCardMappingInfo> m_waiting; // for their editors
    bool m_isAdding = false;         // the user has asked here, and there is no answer yet
    std::uint64_t m_toBeFocused = 0; // the mapping that was the answer; 0: none
    QTimer m_makeEditors;
    int m_room = 0; // that one of them takes
};

AudioSettingBox::Impl::Impl(AudioSettingBox* page) : SettingPageImpl(page, "AudioSettings")
{
    layOut();

    addTitle("AudioMapping");
    addNavigationText("AudioSettings");
    addText("soundCardInfo", m_info);
    addText("addMapping", m_add);
    addText("SoundCardMappingsFull", [this](const QString& /*tip*/) { setAddTip(); });

    m_makeEditors.setSingleShot(true);
    connect(&m_makeEditors, &QTimer::timeout, this, [this] { makeEditors("makeEditors"); });
    connect(m_add, &PushButton::clicked, this, &Impl::slotAddMapping);
    followStore();
}

void AudioSettingBox::Impl::layOut()
{
    owner->setObjectName(QStringLiteral("generalSettingGroupBox"));
    m_add->setObjectName(QStringLiteral("addMapping"));
    m_add->setProperty("style", QStringLiteral("general"));
    setUsualHeight(m_add, 24);
    auto* icon = new QLabel;
    icon->setObjectName(QStringLiteral("infoIcon"));
    icon->setFixedSize(12, 12);
    m_info->setObjectName(QStringLiteral("info"));
    m_info->setWordWrap(true);
    m_info->setFixedWidth(532);

    auto* row = new QHBoxLayout;
    row->setSpacing(0);
    row->addWidget(m_add);
    row->addSpacing(12);
    row->addWidget(icon);
    row->addSpacing(4);
    row->addWidget(m_info);
    row->addStretch();
    m_column->setSpacing(12);
    reserve();
    m_column->addLayout(row);
}

void AudioSettingBox::Impl::followStore()
{
    follow(&IMivoSettings::soundCardMappingsInit, &Impl::mappingsInit);
    follow(&IMivoSettings::soundCardMappingAdded, &Impl::mappingAdded);
    follow(&IMivoSettings::soundCardMappingChanged, &Impl::mappingChanged);
    follow(&IMivoSettings::soundCardMappingDeleted, &Impl::mappingDeleted);
    follow(&IMivoSettings::soundCardEnabled, &Impl::soundCardEnabled);
    follow(&IMivoSettings::soundCardDisabled, &Impl::soundCardDisabled);
    follow(&IMivoSettings::clusterNodeSoundCardsChanged, &Impl::clusterChanged);
    follow(&IMivoSettings::deviceSoundCardVisibleChanged, &Impl::setDeviceSoundCardVisible);
    follow(&IMivoSettings::soundCardMismatch, &Impl::mismatch);
    follow(&IMivoSettings::clusterDeviceSoundCardsDeleted, &Impl::clusterDeleted);
}

void AudioSettingBox::Impl::initSettings()
{
    // Nothing is read: the store announces its mappings. Editors of an earlier binding go on.
    for (VirtualMappingWidget* editor : shownEditors()) {
        editor->setSettings(sharedSettings);
    }
    if (!m_waiting.empty()) {
        m_makeEditors.start(1);
    }
}

VirtualMappingWidget* AudioSettingBox::Impl::makeEditor(const STSoundCardMappingInfo& info)
{
    QWidget* lastStop = m_add;
    for (int item = m_column->count() - 1; item >= 0 && lastStop == m_add; --item) {
        if (QWidget* editor = m_column->itemAt(item)->widget()) {
            lastStop = tabStops(editor, editor).back();
        }
    }
    auto* editor = new VirtualMappingWidget(info, zrRuntime, sharedSettings, owner);
    editor->setProperty("style", QStringLiteral("BG4"));
    editor->resize(0, 0); // nothing of it is painted before it has its place
    m_column->addWidget(editor);
    editor->show();
    m_column->addStretch();
    for (QWidget* stop : tabStops(editor, editor)) {
        QWidget::setTabOrder(lastStop, stop);
        lastStop = stop;
    }
    // A second one for an id is shown but not filed; kept on purpose.
    m_editors.emplace(info.id, editor);
    connect(editor, &VirtualMappingWidget::sigMappingInfoChanged, this,
            &Impl::slotMappingInfoChanged);
    return editor;
}

void AudioSettingBox::Impl::makeEditors(const CallSite& site)
{
    if (m_waiting.empty()) {
        return;
    }
    const auto known = readMappings(site);
    if (!known) {
        if (sharedSettings != nullptr) { // the runtime refuses, but not for ever
            m_makeEditors.start(100);
        }
        return;
    }
    const LayoutPause pause(m_column);
    const int cost = columnsForEditor + std::max(1, known->devices.size());
    int made = 0;
    while (!m_waiting.empty() && (made == 0 || made + cost <= columnsInTurn)) {
        const auto now = std::find_if(
            known->mappings.begin(), known->mappings.end(),
            [this](const auto& mapping) { return mapping.id == m_waiting.front().id; });
        auto* editor = makeEditor(now == known->mappings.end() ? m_waiting.front() : *now);
        editor->resetSoundCardsCombobox(*known);
        m_room = editor->sizeHint().height() + m_column->spacing();
        if (m_toBeFocused == m_waiting.front().id) {
            m_toBeFocused = 0;
            focusNew(editor);
        }
        m_waiting.pop_front();
        made += cost;
    }
    reserve();
    if (!m_waiting.empty()) {
        m_makeEditors.start(1); // what is to be painted comes first
    }
}

void AudioSettingBox::Impl::reserve()
{
    m_column->setContentsMargins(20, 24, 20, 24 + m_room * static_cast<int>(m_waiting.size()));
}

void AudioSettingBox::Impl::resetEditors(Reset reset, const CallSite& site,
                                         const VirtualMappingWidget* except)
{
    if (const auto known = readMappings(site)) {
        forEachEditor([&](VirtualMappingWidget& editor) {
            if (&editor != except) {
                (editor.*reset)(*known);
            }
        });
    }
}

void AudioSettingBox::Impl::onMappingsInit(const STAllDeviceSoundCardMappings& all)
{
    if (all.refreshOnly) {
        resetEditors(resetColumns, "onMappingsInit");
        return;
    }
    m_waiting.insert(m_waiting.end(), all.mappings.begin(), all.mappings.end());
    makeEditors("onMappingsInit");
    setAddedMappingBtnState();
}

void AudioSettingBox::Impl::onMappingAdded(const STSoundCardMappingInfo& info)
{
    const bool isAnswer = std::exchange(m_isAdding, false);
    if (info.state != velorn::mediadispatch::SoundCardMappingRefused) {
        m_toBeFocused = isAnswer ? info.id : m_toBeFocused;
        m_waiting.push_back(info);
        makeEditors("onMappingAdded");
        setAddedMappingBtnState();
    }
}

void AudioSettingBox::Impl::onMappingChanged(const STSoundCardChangeInfo& change)
{
    const auto changed = m_editors.find(change.id);
    VirtualMappingWidget* editor = changed == m_editors.end() ? nullptr : changed->second;
    if (editor == nullptr && findWaiting(change.id) == m_waiting.end()) {
        return;
    }
    if (editor != nullptr) {
        editor->refreshMappingInfo(change);
    }
    if (change.kind == SoundCardChangeLocalCard || change.kind == SoundCardChangeClusterCard) {
        resetEditors(resetOffers, "onMappingChanged", editor);
    }
}

void AudioSettingBox::Impl::onMappingDeleted(const STSoundCardMappingInfo& info)
{
    const auto deleted = m_editors.find(info.id);
    const auto waiting = findWaiting(info.id);
    bool hadFocus = false;
    if (deleted != m_editors.end()) {
        hadFocus = deleted->second->isAncestorOf(owner->window()->focusWidget());
        deleteEditor(deleted->second);
        m_editors.erase(deleted);
    } else if (waiting != m_waiting.end()) {
        m_waiting.erase(waiting);
        reserve();
    } else {
        return;
    }
    resetEditors(resetOffers, "onMappingDeleted");
    setAddedMappingBtnState();
    if (hadFocus) { // else the next key would change the next mapping
        m_add->setFocus();
    }
}

void AudioSettingBox::Impl::deleteEditor(VirtualMappingWidget* editor)
{
    for (int item = 0; item < m_column->count(); ++item) {
        if (m_column->itemAt(item)->widget() != editor) {
            continue;
        }
        delete m_column->takeAt(item); // the stretch behind it stays; kept on purpose
        editor->hide();
        editor->deleteLater(); // it may be what is being used
        return;
    }
}

void AudioSettingBox::Impl::onSoundCardEnableSet(const STLocalSoundCardList& list)
{
    forEachEditor([&](VirtualMappingWidget& editor) {
        editor.setSoundCardEnable(list.device, list.soundCards);
    });
    resetEditors(resetOffers, "onSoundCardEnableSet");
}

void AudioSettingBox::Impl::onSoundCardDisableSet(const STLocalSoundCardList& list)
{
    forEachEditor([&](VirtualMappingWidget& editor) {
        editor.setSoundCardDisable(list.device, list.soundCards);
    });
    resetEditors(resetOffers, "onSoundCardDisableSet");
}

void AudioSettingBox::Impl::onClusterNodeSoundCardChanged()
{
    resetEditors(resetColumns, "onClusterNodeSoundCardChanged");
}

void AudioSettingBox::Impl::deleteClusterDeviceSoundCard(const std::vector<std::string>& devices)
{
    forEachEditor(
        [&](VirtualMappingWidget& editor) { editor.deleteClusterDeviceSoundCard(devices); });
}

void AudioSettingBox::Impl::setDeviceSoundCardVisible(const STDeviceSoundCardVisibleInfo& info)
{
    logAt(spdlog::level::debug, "setDeviceSoundCardVisible",
          "setDeviceSoundCardVisible deviceIp:{}, visible:{}", info.deviceIp, info.visible);
    queue("showDeviceSoundCards", info);
}

void AudioSettingBox::Impl::showDeviceSoundCards(const STDeviceSoundCardVisibleInfo& info)
{
    forEachEditor([&](VirtualMappingWidget& editor) {
        editor.setDeviceSoundCardVisible(info.deviceIp, info.visible);
    });
}

void AudioSettingBox::Impl::setAddedMappingBtnState()
{
    if (sharedSettings != nullptr) {
        // Not this function's file and line; kept on purpose.
        const CallSite site("setAddedMappingBtnState", "audiosettingbox", 314);
        m_add->setEnabled(read(&IMivoSettings::getSoundCardMappingCount, site)
                          < mostSoundCardMappings);
        setAddTip();
    }
}

void AudioSettingBox::Impl::setAddTip()
{
    const QString tip =
        m_add->isEnabled() ? QString() : settings::text(QStringLiteral("SoundCardMappingsFull"));
    m_add->setToolTip(tip);
    m_add->setAccessibleDescription(tip);
}

void AudioSettingBox::Impl::focusNew(VirtualMappingWidget* editor)
{
    editor->setFocus(Qt::TabFocusReason); // selects the name, so that typing replaces it
    // Queued: the editor gets its place with the next layout.
    QTimer::singleShot(0, editor, [editor] {
        for (QWidget* outer = editor; outer != nullptr; outer = outer->parentWidget()) {
            if (auto* area = qobject_cast<QScrollArea*>(outer)) {
                area->ensureWidgetVisible(editor);
                area->ensureWidgetVisible(editor->focusProxy()); // the editor may be too high
            }
        }
    });
}

void AudioSettingBox::Impl::slotAddMapping()
{
    if (sharedSettings == nullptr) {
        warn("slotAddMapping", "setting is null");
        return;
    }
    m_isAdding = true;
    submit([](MivoSettings* store,
              const STSoundCardMappingInfo& info) { store->addSoundCardMappingRequested(info); },
           STSoundCardMappingInfo());
}

void AudioSettingBox::Impl::slotMappingInfoChanged(const STSoundCardChangeInfo& change)
{
    if (sharedSettings == nullptr) {
        warn("slotMappingInfoChanged", "setting is null");
        return;
    }
    submit(
        [](MivoSettings* store, const STSoundCardChangeInfo& wanted) {
            store->changeSoundCardMappingRequested(wanted);
        },
        change);
}

void AudioSettingBox::Impl::setSoundCardMismatchMsg(const STSoundCardMismatchInfo& info)
{
    if (msgCenter == nullptr) {
        return;
    }
    const auto textOf = [](const char* key) { return settings::text(QString::fromLatin1(key)); };
    const QString device = QString::fromStdString(info.device);
    const QString pair = info.local ? textOf("BackUp") + device + textOf("LocalDevice")
                                    : textOf("SlaverBackUp") + device + textOf("Slaver");
    const QString card = QString::fromStdString(info.soundCard);
    const QString language =
        SettingWdigetTranslateManager::instance().translator().language().toLower();
    // Every language but Chinese is worded as English is.
    const QString message = language == QLatin1String("zh_cn")
                                ? pair + card + QStringLiteral(")") + textOf("SoundCardMisMatch")
                                : textOf("SoundCardNumberOf") + pair + card + QStringLiteral(") ")
                                      + textOf("SoundCardMisMatch");
    msgCenter->postMessage({velorn::msgcenter::MsgWarning, message.toStdString(), -1});
}

AudioSettingBox::AudioSettingBox(QWidget* parent) : SettingPage(parent)
{
    setImpl(std::make_unique<Impl>(this));
}

AudioSettingBox::~AudioSettingBox() = default;

void AudioSettingBox::setMsgCenterMgr(IMsgCenterMgr* msgCenter)
{
    impl<Impl>().msgCenter = msgCenter;
}

void AudioSettingBox::setProgramDispatch(std::shared_ptr<IProgramDispatch> dispatch)
{
    impl<Impl>().programDispatch = std::move(dispatch);
}

void AudioSettingBox::setProjectFileMgr(IProjectFileMgr* projectFile)
{
    impl<Impl>().projectFileMgr = projectFile;
}

void AudioSettingBox::setSettingsStyleSheet(const QString& styleSheet)
{
    setStyleSheet(styleSheet);
}

void AudioSettingBox::translateLanguage()
{
    SettingPage::translateLanguage();
    for (VirtualMappingWidget* editor : impl<Impl>().shownEditors()) {
        editor->translateLangauge();
    }
}

} // namespace mivo::settings

#include "audiosettingbox.moc"
