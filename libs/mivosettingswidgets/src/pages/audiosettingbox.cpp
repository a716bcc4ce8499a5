#include "mivosettingswidgets/audiosettingbox.h"

#include "kit/standardmetatypes.h"
#include "mivohostapi/imsgcentermgr.h"
#include "mivohostapi/iprogramdispatch.h"
#include "mivosettingswidgets/controls.h"
#include "mivosettingswidgets/settingpageimpl.h"
#include "mivosettingswidgets/texts.h"
#include "mivosettingswidgets/virtualmappingwidget.h"
#include "soundcards/mappingeditors.h"

#include <mivowidgets/pushbutton.h>

#include <QtCore/QTimer>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QScrollArea>

#include <optional>
#include <utility>

namespace mivo::settings {

using mivo::STSoundCardChangeInfo;
using mivo::mediadispatch::IProgramDispatch;
using mivo::projectfilemgr::IProjectFileMgr;
using mivo::widgets::PushButton;
using velorn::mediadispatch::STSoundCardMappingInfo;
using velorn::msgcenter::IMsgCenterMgr;

class AudioSettingBox::Impl : public SettingPageImpl
{
    Q_OBJECT

public:
    explicit Impl(AudioSettingBox* page);

    IMsgCenterMgr* msgCenter = nullptr;
    std::shared_ptr<IProgramDispatch> programDispatch;
    IProjectFileMgr* projectFileMgr = nullptr;

    /// All editors on the page, also a second one for a mapping, which m_editors does not find.
    QList<VirtualMappingWidget*> shownEditors() const
    {
        return owner->findChildren<VirtualMappingWidget*>(QString(), Qt::FindDirectChildrenOnly);
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
        m_isAdding = false;
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

    /// Reads the store and resets every editor except `except`; nothing when the runtime refuses.
    void resetEditors(Reset reset, const CallSite& site,
                      const VirtualMappingWidget* except = nullptr);

    void setAddedMappingBtnState();
    void setAddTip();
    /// Scrolls to the editor of a mapping that was added here, with its name selected for typing.
    void focusNew(VirtualMappingWidget* editor);

    // Called by the store's signals, on the emitting thread.
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
    MappingEditors m_editors{
        m_column, m_add,
        [this](const CallSite& site) {
            auto known = readMappings(site);
            if (!known && sharedSettings != nullptr) {
                m_editors.makeWaitingLater(100); // the runtime refuses for a while only
            }
            return known;
        },
        [this](const STSoundCardMappingInfo& info) {
            auto* editor = new VirtualMappingWidget(info, zrRuntime, sharedSettings, owner);
            connect(editor, &VirtualMappingWidget::sigMappingInfoChanged, this,
                    &Impl::slotMappingInfoChanged);
            return editor;
        }};
    bool m_isAdding = false; // this page's add request has no answer yet
    std::uint64_t m_toBeFocused =
        0; // id of the mapping that was added here, until it has an editor
};

AudioSettingBox::Impl::Impl(AudioSettingBox* page) : SettingPageImpl(page, "AudioSettings")
{
    layOut();

    addTitle("AudioMapping");
    addNavigationText("AudioSettings");
    addText("soundCardInfo", m_info);
    addText("addMapping", m_add);
    addText("SoundCardMappingsFull", [this](const QString& /*tip*/) { setAddTip(); });

    connect(&m_editors, &MappingEditors::made, this,
            [this](std::uint64_t id, VirtualMappingWidget* editor) {
                if (id == m_toBeFocused) {
                    m_toBeFocused = 0;
                    focusNew(editor);
                }
            });
    connect(m_add, &PushButton::clicked, this, &Impl::slotAddMapping);
    followStore();
}

void AudioSettingBox::Impl::layOut()
{
    owner->setObjectName(QStringLiteral("generalSettingGroupBox"));
    m_add->setObjectName(QStringLiteral("addMapping"));
    m_add->setProperty("style", QStringLiteral("general"));
    setUsualHeight(m_add, 24);
    auto* icon = new QLabel(owner);
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
    m_editors.makeWaitingLater();
}

void AudioSettingBox::Impl::resetEditors(Reset reset, const CallSite& site,
                                         const VirtualMappingWidget* except)
{
    if (const auto known = readMappings(site)) {
        m_editors.forEach([&](VirtualMappingWidget& editor) {
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
    m_editors.add(all.mappings, "onMappingsInit");
    setAddedMappingBtnState();
}

void AudioSettingBox::Impl::onMappingAdded(const STSoundCardMappingInfo& info)
{
    const bool isAnswer = std::exchange(m_isAdding, false);
    if (info.state != velorn::mediadispatch::SoundCardMappingRefused) {
        m_toBeFocused = isAnswer ? info.id : m_toBeFocused;
        m_editors.add({info}, "onMappingAdded");
        if (!info.soundCards.empty()) { // from elsewhere: they are not free any more
            resetEditors(resetOffers, "onMappingAdded");
        }
        setAddedMappingBtnState();
    }
}

void AudioSettingBox::Impl::onMappingChanged(const STSoundCardChangeInfo& change)
{
    VirtualMappingWidget* editor = m_editors.find(change.id);
    if (editor == nullptr && !m_editors.isWaiting(change.id)) {
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
    const VirtualMappingWidget* editor = m_editors.find(info.id);
    if (editor == nullptr && !m_editors.isWaiting(info.id)) {
        return;
    }
    const bool hadFocus = editor != nullptr && editor->isAncestorOf(owner->window()->focusWidget());
    m_editors.remove(info.id);
    resetEditors(resetOffers, "onMappingDeleted");
    setAddedMappingBtnState();
    if (hadFocus) { // Qt would pass it to the next editor, where a key press would change something
        m_add->setFocus();
    }
}

void AudioSettingBox::Impl::onSoundCardEnableSet(const STLocalSoundCardList& list)
{
    m_editors.forEach([&](VirtualMappingWidget& editor) {
        editor.setSoundCardEnable(list.device, list.soundCards);
    });
    resetEditors(resetOffers, "onSoundCardEnableSet");
}

void AudioSettingBox::Impl::onSoundCardDisableSet(const STLocalSoundCardList& list)
{
    m_editors.forEach([&](VirtualMappingWidget& editor) {
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
    m_editors.forEach(
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
    m_editors.forEach([&](VirtualMappingWidget& editor) {
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
    m_isAdding = submit(
        [](MivoSettings* store, const STSoundCardMappingInfo& info) {
            store->addSoundCardMappingRequested(info);
        },
        STSoundCardMappingInfo());
}

void AudioSettingBox::Impl::slotMappingInfoChanged(const STSoundCardChangeInfo& change)
{
    if (sharedSettings == nullptr) {
        warn("slotMappingInfoChanged", "setting is null");
        return;
    }
    submit(
        [](MivoSettings* store, const STSoundCardChangeInfo& request) {
            store->changeSoundCardMappingRequested(request);
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
