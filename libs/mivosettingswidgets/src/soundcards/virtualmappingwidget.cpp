#include "mivosettingswidgets/virtualmappingwidget.h"

#include "mivohostapi/imivosettings.h"
#include "mivosettingswidgets/controls.h"
#include "mivosettingswidgets/storeaccess.h"
#include "mivosettingswidgets/texts.h"
#include "soundcards/devicecolumns.h"
#include "soundcards/knowndevices.h"
#include "soundcards/soundcardcolumn.h"

#include <mivowidgets/alertlabel.h>
#include <mivowidgets/editbox.h>
#include <mivowidgets/pushbutton.h>
#include <mivowidgets/tipdialog.h>

#include <QtCore/QPointer>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>

#include <algorithm>
#include <optional>
#include <utility>

namespace mivo::settings {

using mivo::STSoundCardChangeInfo;
using mivo::widgets::EditBox;
using mivo::widgets::PushButton;
using mivo::widgets::TipDialog;
using velorn::mediadispatch::STChosenSoundCard;
using velorn::mediadispatch::STSoundCardMappingInfo;

class VirtualMappingWidget::Impl : public QObject
{
    Q_OBJECT

public:
    Impl(VirtualMappingWidget* editor, const STSoundCardMappingInfo& mapping, IZRRuntime* runtime,
         MivoSettings* settings);

    std::optional<STSoundCardMappingsInfo> read(const CallSite& site) const
    {
        return readIfThere(zrRuntime, site, &IMivoSettings::getSoundCardMappings, sharedSettings);
    }
    void resetAll(const STSoundCardMappingsInfo& known);
    void resetOffers(const STSoundCardMappingsInfo& known, bool withColumns = false);
    void deleteColumns(const std::vector<std::string>& devices);
    void showColumn(const std::string& device, bool visible);
    void translate();
    auto* columnOf(const std::string& device) const { return m_columns.find(device); }
    void refresh(const STSoundCardChangeInfo& change);

    MivoSettings* sharedSettings;
    IZRRuntime* zrRuntime;

public slots:
    void slotNameEdited();
    void slotDelete();

private:
    void resetColumns(const STSoundCardMappingsInfo& known);
    void showName();
    const STChosenSoundCard* chosenOn(const std::string& device) const;
    void setChosen(const STChosenSoundCard& soundCard);

    VirtualMappingWidget* m_owner;
    STSoundCardMappingInfo m_info;
    QLabel* m_nameLabel;
    EditBox* m_name;
    QLabel* m_nameTip;
    PushButton* m_delete;
    DeviceColumns m_columns;
    STSoundCardMappingsInfo m_known; // of the last reset
    bool m_isReset = false; // with its columns, and nothing but these themselves changed since
};

VirtualMappingWidget::Impl::Impl(VirtualMappingWidget* editor,
                                 const STSoundCardMappingInfo& mapping, IZRRuntime* runtime,
                                 MivoSettings* settings)
    : sharedSettings(settings), zrRuntime(runtime), m_owner(editor), m_info(mapping),
      m_nameLabel(new QLabel(editor)), m_name(new EditBox(editor)),
      m_nameTip(new mivo::widgets::AlertLabel(editor)), m_delete(new PushButton(editor)),
      m_columns(editor, m_delete, m_name)
{
    m_nameLabel->setBuddy(m_name);
    m_name->setObjectName(QStringLiteral("mappingName"));
    m_name->setMaxLength(longestSoundCardMappingName);
    m_name->setFixedWidth(240);
    setUsualHeight(m_name, 24);
    m_nameTip->setObjectName(QStringLiteral("mappingNameTip"));
    m_nameTip->hide();
    m_delete->setObjectName(QStringLiteral("deleteMapping"));
    m_delete->setProperty("style", QStringLiteral("assist"));
    setUsualHeight(m_delete, 24);

    auto* row = rowOf({m_nameLabel, m_name, m_nameTip});
    row->setSpacing(8);
    row->addWidget(m_delete);
    auto* column = new QVBoxLayout(editor);
    column->setContentsMargins(12, 12, 12, 12);
    column->setSpacing(12);
    column->addLayout(row);
    column->addLayout(m_columns.grid());
    editor->setFocusProxy(m_name);
    translate();
    showName();
    connect(m_name, &EditBox::editingFinished, this, &Impl::slotNameEdited);
    connect(m_name, &EditBox::textEdited, m_nameTip, &QLabel::hide);
    connect(m_delete, &PushButton::clicked, this, &Impl::slotDelete);
    connect(&m_columns, &DeviceColumns::changeRequested, this,
            [this](mivo::EnumSoundCardChange kind, const STChosenSoundCard& soundCard) {
                emit m_owner->sigMappingInfoChanged({m_info.id, kind, {}, soundCard});
            });
    connect(&m_columns, &DeviceColumns::outdated, m_owner,
            [this] { m_owner->resetSoundCardWidget(); });
}

const STChosenSoundCard* VirtualMappingWidget::Impl::chosenOn(const std::string& device) const
{
    const auto found =
        std::find_if(m_info.soundCards.begin(), m_info.soundCards.end(),
                     [&](const STChosenSoundCard& card) { return card.device == device; });
    return found == m_info.soundCards.end() ? nullptr : &*found;
}

void VirtualMappingWidget::Impl::resetAll(const STSoundCardMappingsInfo& known)
{
    if (!m_isReset || !m_known.mappings.isSharedWith(known.mappings)
        || !m_known.devices.isSharedWith(known.devices) || !m_columns.areAsSet()) {
        resetOffers(known, true);
    }
}

void VirtualMappingWidget::Impl::resetColumns(const STSoundCardMappingsInfo& known)
{
    std::vector<std::string_view> devices{""}; // this machine first
    for (const auto& device : known.devices) {
        const bool isShown = !device.soundCards.empty() || chosenOn(device.device) != nullptr;
        if (!device.device.empty() && isShown) {
            devices.push_back(device.device);
        }
    }
    m_columns.reset(devices);
}

void VirtualMappingWidget::Impl::deleteColumns(const std::vector<std::string>& devices)
{
    m_isReset = false;
    m_columns.remove(devices);
}

void VirtualMappingWidget::Impl::showColumn(const std::string& device, bool visible)
{
    if (SoundCardColumn* column = columnOf(device)) {
        m_isReset = false;
        m_columns.show(column, visible);
        m_columns.place();
    }
}

void VirtualMappingWidget::Impl::resetOffers(const STSoundCardMappingsInfo& known, bool withColumns)
{
    bool isOther = false; // what is chosen
    for (const auto& mapping : known.mappings) {
        if (mapping.id == m_info.id) {
            isOther = m_info.soundCards != mapping.soundCards;
            m_info.soundCards = mapping.soundCards;
            if (std::exchange(m_info.name, mapping.name) != mapping.name) {
                showName(); // renamed while the page had no store
            }
        }
    }
    withColumns |= m_columns.all().empty();
    if (withColumns) {
        resetColumns(known); // which depend on what is chosen
    }
    static const STDeviceSoundCards none;
    const auto& devices = compareDevices(std::exchange(m_known, known).devices, known.devices);
    for (SoundCardColumn* column : m_columns.all()) {
        const auto found = devices.find(column->device);
        const auto* device = found == devices.end() ? nullptr : &found->second;
        if (isOther || device == nullptr || device->isOther || !column->isAsSet()) {
            column->setCards(device == nullptr ? none : *device->cards, m_info.id,
                             chosenOn(column->device));
        }
        if (device != nullptr) {
            m_columns.show(column, device->cards->visible);
        }
    }
    m_columns.place();
    m_isReset = withColumns;
}

void VirtualMappingWidget::Impl::translate()
{
    m_nameLabel->setText(text(QStringLiteral("MappingName")));
    m_name->setAccessibleName(m_nameLabel->text());
    m_nameTip->setText(text(QStringLiteral("MappingNameInUse")));
    m_delete->setText(text(QStringLiteral("DeleteMapping")));
    for (SoundCardColumn* column : m_columns.all()) {
        column->translate();
    }
}

void VirtualMappingWidget::Impl::showName()
{
    const QString name = QString::fromStdString(m_info.name);
    const QSignalBlocker blocker(m_name);
    m_name->setText(name);
    m_delete->setAccessibleDescription(name); // which of the buttons of that text
    m_columns.setMappingName(name);
}

void VirtualMappingWidget::Impl::refresh(const STSoundCardChangeInfo& change)
{
    m_isReset = false;
    if (change.kind == SoundCardChangeName) {
        m_info.name = change.name;
        showName();
    } else if (change.kind == SoundCardChangeLocalCard || change.kind == SoundCardChangeClusterCard
               || change.kind == SoundCardChangeChannels) {
        setChosen(change.soundCard);
    } // the page itself carries out a deletion
}

void VirtualMappingWidget::Impl::setChosen(const STChosenSoundCard& soundCard)
{
    auto& all = m_info.soundCards;
    const auto isSameDevice = [&](const auto& card) { return card.device == soundCard.device; };
    all.erase(std::remove_if(all.begin(), all.end(), isSameDevice), all.end());
    if (!soundCard.id.empty()) {
        all.push_back(soundCard);
    }
    if (SoundCardColumn* column = columnOf(soundCard.device)) {
        column->setChosen(chosenOn(soundCard.device));
        if (column->isEmpty()) {
            deleteColumns({soundCard.device});
        }
    } else if (!soundCard.id.empty()) {
        m_owner->resetSoundCardWidget(); // the device has a column from now on
    }
}

void VirtualMappingWidget::Impl::slotNameEdited()
{
    const std::string name = m_name->text().trimmed().toStdString();
    if (name.empty() || name == m_info.name) {
        showName();
        return;
    }
    const auto known = read("slotNameEdited").value_or(STSoundCardMappingsInfo());
    const bool isInUse =
        std::any_of(known.mappings.begin(), known.mappings.end(),
                    [&](const auto& other) { return other.id != m_info.id && other.name == name; });
    m_nameTip->setVisible(isInUse);
    if (isInUse) {
        showName();
    } else {
        emit m_owner->sigMappingInfoChanged({m_info.id, SoundCardChangeName, name, {}});
    }
}

void VirtualMappingWidget::Impl::slotDelete()
{
    const QPointer<Impl> self(this);
    const int answer = TipDialog::ask(
        m_owner, TipDialog::question,
        text(QStringLiteral("DeleteMappingTips")).arg(QString::fromStdString(m_info.name)),
        text(QStringLiteral("Cancel")), text(QStringLiteral("OK")));
    if (self && answer == TipDialog::accepted) {
        emit m_owner->sigMappingInfoChanged({m_info.id, SoundCardChangeDeletion, {}, {}});
    }
}

VirtualMappingWidget::VirtualMappingWidget(const STSoundCardMappingInfo& info, IZRRuntime* runtime,
                                           MivoSettings* settings, QWidget* parent)
    : QWidget(parent), m_impl(std::make_unique<Impl>(this, info, runtime, settings))
{
    setAttribute(Qt::WA_StyledBackground);
}

VirtualMappingWidget::~VirtualMappingWidget() = default;

void VirtualMappingWidget::setSettings(MivoSettings* settings)
{
    m_impl->sharedSettings = settings;
}

void VirtualMappingWidget::resetSoundCardsCombobox()
{
    if (const auto known = m_impl->read("resetSoundCardsCombobox")) {
        m_impl->resetOffers(*known);
    }
}

void VirtualMappingWidget::resetSoundCardsCombobox(const STSoundCardMappingsInfo& known)
{
    m_impl->resetOffers(known);
}

void VirtualMappingWidget::resetSoundCardWidget()
{
    if (const auto known = m_impl->read("resetSoundCardWidget")) {
        resetSoundCardWidget(*known);
    }
}

void VirtualMappingWidget::resetSoundCardWidget(const STSoundCardMappingsInfo& known)
{
    m_impl->resetAll(known);
}

void VirtualMappingWidget::refreshMappingInfo(const STSoundCardChangeInfo& change)
{
    m_impl->refresh(change);
}

void VirtualMappingWidget::setSoundCardEnable(const std::string& device,
                                              const std::vector<std::string>& soundCards)
{
    if (SoundCardColumn* column = m_impl->columnOf(device)) {
        column->enable(soundCards);
    }
}

void VirtualMappingWidget::setSoundCardDisable(const std::string& device,
                                               const std::vector<std::string>& soundCards)
{
    if (SoundCardColumn* column = m_impl->columnOf(device)) {
        column->disable(soundCards);
    }
}

void VirtualMappingWidget::deleteClusterDeviceSoundCard(const std::vector<std::string>& devices)
{
    m_impl->deleteColumns(devices);
}

void VirtualMappingWidget::setDeviceSoundCardVisible(const std::string& device, bool visible)
{
    m_impl->showColumn(device, visible);
}

void VirtualMappingWidget::translateLangauge()
{
    m_impl->translate();
}

} // namespace mivo::settings

#include "virtualmappingwidget.moc"
