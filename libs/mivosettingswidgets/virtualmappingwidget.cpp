#include "mivosettingswidgets/virtualmappingwidget.h"

#include "controls.h"
#include "mivohostapi/imivosettings.h"
#include "storeaccess.h"
#include "texts.h"

#include <mivowidgets/checkbox.h>
#include <mivowidgets/combobox.h>
#include <mivowidgets/editbox.h>
#include <mivowidgets/pushbutton.h>
#include <mivowidgets/tipdialog.h>

#include <QtCore/QEvent>
#include <QtCore/QPointer>
#include <QtCore/QStringListModel>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>

#include <algorithm>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace mivo::settings {

using mivo::STSoundCardChangeInfo;
using mivo::widgets::CheckBox;
using mivo::widgets::ComboBox;
using mivo::widgets::EditBox;
using mivo::widgets::PushButton;
using mivo::widgets::TipDialog;
using velorn::mediadispatch::STChosenSoundCard;
using velorn::mediadispatch::STSoundCardMappingInfo;

namespace {

constexpr int columnsInRow = 3;
constexpr int marksInRow = 3;
constexpr int columnWidth = 240;

/// One of some hundred boxes: as wide as its column, and not as the widest of its items, which
/// would all be measured, and without the list that opens until it does.
class CardBox : public ComboBox
{
public:
    using ComboBox::ComboBox;

    QSize sizeHint() const override { return {columnWidth, 26}; }
    QSize minimumSizeHint() const override { return sizeHint(); }

    void showPopup() override
    {
        m_hasList = true;
        view()->setFont(font());
        ComboBox::showPopup();
    }

protected:
    void changeEvent(QEvent* event) override
    {
        // The base class makes the list, only to hand the font on to it.
        if (m_hasList || event->type() != QEvent::FontChange) {
            ComboBox::changeEvent(event);
        } else {
            QWidget::changeEvent(event);
        }
    }

private:
    bool m_hasList = false;
};

template <typename List, typename Value>
bool contains(const List& list, const Value& value)
{
    return std::find(list.begin(), list.end(), value) != list.end();
}

/// Of each device, the ids of the cards that are chosen in other mappings; views into `mappings`.
using TakenCards = std::unordered_map<std::string_view, std::unordered_set<std::string_view>>;

TakenCards takenFrom(std::uint64_t ownId, const QVector<STSoundCardMappingInfo>& mappings)
{
    TakenCards taken;
    for (const auto& mapping : mappings) {
        if (mapping.id != ownId) {
            for (const auto& card : mapping.soundCards) {
                taken[card.device].insert(card.id);
            }
        }
    }
    return taken;
}

/// Whether `value` was another one.
template <typename Value>
bool replace(Value& value, const Value& wanted)
{
    const bool isOther = value != wanted;
    if (isOther) {
        value = wanted;
    }
    return isOther;
}

/// Whether `offered` had to become those of `cards` that are free.
bool replaceOffers(std::vector<STSoundCardInfo>& offered, const std::vector<STSoundCardInfo>& cards,
                   const std::unordered_set<std::string_view>& taken)
{
    std::vector<const STSoundCardInfo*> free;
    for (const STSoundCardInfo& card : cards) {
        if (taken.count(card.id) == 0) {
            free.push_back(&card);
        }
    }
    const bool isSame = std::equal(
        free.begin(), free.end(), offered.begin(), offered.end(),
        [](const STSoundCardInfo* one, const STSoundCardInfo& other) { return *one == other; });
    if (!isSame) {
        std::vector<STSoundCardInfo> wanted;
        std::transform(free.begin(), free.end(), std::back_inserter(wanted),
                       [](const STSoundCardInfo* card) { return *card; });
        offered = std::move(wanted);
    }
    return !isSame;
}

} // namespace

class VirtualMappingWidget::Impl : public QObject
{
    Q_OBJECT

public:
    Impl(VirtualMappingWidget* editor, const STSoundCardMappingInfo& mapping, IZRRuntime* runtime,
         MivoSettings* settings);

    /// The cards of one device.
    struct Column
    {
        std::string device;
        std::string caption;
        std::vector<STSoundCardInfo> offered;
        bool visible = true;
        bool isShown = false; // what stands above

        QWidget* box = nullptr; // of all that follows
        QLabel* label = nullptr;
        ComboBox* combo = nullptr;
        QStringListModel* texts = nullptr; // of the items of the combo box ...
        std::vector<std::string> ids;      // ... and their cards
        QGridLayout* marksLayout = nullptr;
        std::vector<CheckBox*> marks; // of the channel pairs
    };

    using Columns = std::vector<std::unique_ptr<Column>>;

    std::optional<STSoundCardMappingsInfo> read(const CallSite& site) const;
    void resetColumns(const STSoundCardMappingsInfo& known);
    void resetOffers(const STSoundCardMappingsInfo& known);
    void deleteColumns(const std::vector<std::string>& devices);
    void placeColumns();
    void showColumn(Column& column);
    void showAll();
    void setTexts();
    Column* columnOf(const std::string& device);
    STChosenSoundCard* chosenOn(const std::string& device);
    void refresh(const STSoundCardChangeInfo& change);

    MivoSettings* sharedSettings;
    IZRRuntime* zrRuntime;

public slots:
    void slotNameEdited();
    void slotDelete();

private:
    std::unique_ptr<Column> makeColumn(const std::string& device);
    void showMarks(Column& column, const STChosenSoundCard* chosen, std::uint32_t channels);
    void retire(Column& column);
    void orderTabStops();
    void showName();
    void choose(const Column& column, int item);
    void markPair(const Column& column, std::size_t pair, bool on);

    VirtualMappingWidget* m_owner;
    STSoundCardMappingInfo m_info;
    QLabel* m_nameLabel;
    EditBox* m_name;
    QLabel* m_nameTip;
    PushButton* m_delete;
    QGridLayout* m_grid;
    Columns m_columns;              // this machine first
    std::vector<QWidget*> m_placed; // the boxes of those that are visible
};

VirtualMappingWidget::Impl::Impl(VirtualMappingWidget* editor,
                                 const STSoundCardMappingInfo& mapping, IZRRuntime* runtime,
                                 MivoSettings* settings)
    : sharedSettings(settings), zrRuntime(runtime), m_owner(editor), m_info(mapping),
      m_nameLabel(new QLabel(editor)), m_name(new EditBox(editor)), m_nameTip(new QLabel(editor)),
      m_delete(new PushButton(editor)), m_grid(new QGridLayout)
{
    m_nameLabel->setBuddy(m_name);
    m_name->setObjectName(QStringLiteral("mappingName"));
    m_name->setMaxLength(longestSoundCardMappingName);
    m_name->setFixedSize(columnWidth, 24);
    m_nameTip->setObjectName(QStringLiteral("mappingNameTip"));
    m_nameTip->hide();
    m_delete->setObjectName(QStringLiteral("deleteMapping"));
    m_delete->setProperty("style", QStringLiteral("assist"));
    m_delete->setFixedHeight(24);

    auto* row = new QHBoxLayout;
    row->setSpacing(8);
    row->addWidget(m_nameLabel);
    row->addWidget(m_name);
    row->addWidget(m_nameTip);
    row->addStretch();
    row->addWidget(m_delete);
    m_grid->setSpacing(12);
    m_grid->setColumnStretch(columnsInRow, 1);
    auto* column = new QVBoxLayout(editor);
    column->setContentsMargins(12, 12, 12, 12);
    column->setSpacing(12);
    column->addLayout(row);
    column->addLayout(m_grid);
    setTexts();
    showName();

    connect(m_name, &EditBox::editingFinished, this, &Impl::slotNameEdited);
    connect(m_name, &EditBox::textEdited, m_nameTip, &QLabel::hide);
    connect(m_delete, &PushButton::clicked, this, &Impl::slotDelete);
}

std::optional<STSoundCardMappingsInfo> VirtualMappingWidget::Impl::read(const CallSite& site) const
{
    if (sharedSettings == nullptr) {
        return std::nullopt;
    }
    return callInRuntime(zrRuntime, site.file, site.line, site.function,
                         &IMivoSettings::getSoundCardMappings, sharedSettings);
}

VirtualMappingWidget::Impl::Column* VirtualMappingWidget::Impl::columnOf(const std::string& device)
{
    const auto found = std::find_if(m_columns.begin(), m_columns.end(),
                                    [&](const auto& column) { return column->device == device; });
    return found == m_columns.end() ? nullptr : found->get();
}

STChosenSoundCard* VirtualMappingWidget::Impl::chosenOn(const std::string& device)
{
    const auto found =
        std::find_if(m_info.soundCards.begin(), m_info.soundCards.end(),
                     [&](const STChosenSoundCard& card) { return card.device == device; });
    return found == m_info.soundCards.end() ? nullptr : &*found;
}

std::unique_ptr<VirtualMappingWidget::Impl::Column>
VirtualMappingWidget::Impl::makeColumn(const std::string& device)
{
    auto column = std::make_unique<Column>();
    column->device = device;
    column->box = new QWidget(m_owner);
    column->label = new QLabel(column->box);
    column->combo = new CardBox(column->box);
    column->texts = new QStringListModel(column->combo);
    column->combo->setModel(column->texts);
    column->label->setBuddy(column->combo);
    column->label->setTextFormat(Qt::PlainText);
    column->label->setFixedHeight(20); // whatever its script, so that columns stand in line
    column->box->setFixedWidth(columnWidth);
    column->marksLayout = new QGridLayout;
    column->marksLayout->setSpacing(4);
    for (int place = 0; place < marksInRow; ++place) {
        column->marksLayout->setColumnMinimumWidth(place, columnWidth / marksInRow - 4);
    }
    auto* layout = new QVBoxLayout(column->box);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(column->label);
    layout->addWidget(column->combo);
    layout->addLayout(column->marksLayout);
    layout->addStretch();
    connect(column->combo, qOverload<int>(&ComboBox::activated), this,
            [this, made = column.get()](int item) { choose(*made, item); });
    return column;
}

void VirtualMappingWidget::Impl::resetColumns(const STSoundCardMappingsInfo& known)
{
    Columns before = std::exchange(m_columns, {});
    const auto add = [&](const std::string& device) {
        const auto same = std::find_if(before.begin(), before.end(), [&](const auto& column) {
            return column != nullptr && column->device == device;
        });
        m_columns.push_back(same == before.end() ? makeColumn(device) : std::move(*same));
    };
    add(std::string());
    for (const auto& device : known.devices) {
        const bool isShown = !device.soundCards.empty() || chosenOn(device.device) != nullptr;
        if (!device.device.empty() && isShown) {
            add(device.device);
        }
    }
    for (const auto& column : before) {
        if (column != nullptr) {
            retire(*column);
        }
    }
    orderTabStops();
}

void VirtualMappingWidget::Impl::deleteColumns(const std::vector<std::string>& devices)
{
    const auto gone =
        std::stable_partition(m_columns.begin(), m_columns.end(), [&](const auto& column) {
            return column->device.empty() || !contains(devices, column->device);
        });
    std::for_each(gone, m_columns.end(), [this](const auto& column) { retire(*column); });
    m_columns.erase(gone, m_columns.end());
    placeColumns();
}

void VirtualMappingWidget::Impl::retire(Column& column)
{
    column.combo->disconnect(this);
    for (CheckBox* mark : column.marks) {
        mark->disconnect(this);
    }
    column.box->hide();
    column.box->deleteLater(); // its list may be open
}

void VirtualMappingWidget::Impl::resetOffers(const STSoundCardMappingsInfo& known)
{
    if (m_columns.empty()) {
        resetColumns(known);
    }
    bool isChoiceOther = false;
    for (const auto& mapping : known.mappings) {
        isChoiceOther |= mapping.id == m_info.id && replace(m_info.soundCards, mapping.soundCards);
    }
    TakenCards taken = takenFrom(m_info.id, known.mappings);
    std::unordered_map<std::string_view, const STDeviceSoundCards*> devices;
    for (const auto& device : known.devices) {
        devices.emplace(device.device, &device);
    }
    static const STDeviceSoundCards none;
    for (const auto& column : m_columns) {
        const auto found = devices.find(column->device);
        const STDeviceSoundCards& device = found == devices.end() ? none : *found->second;
        column->visible = found == devices.end() ? column->visible : device.visible;
        bool isOther = isChoiceOther || !column->isShown;
        isOther |=
            replace(column->caption, device.caption.empty() ? column->device : device.caption);
        isOther |= replaceOffers(column->offered, device.soundCards, taken[column->device]);
        if (isOther) {
            showColumn(*column);
        }
    }
    placeColumns();
}

void VirtualMappingWidget::Impl::placeColumns()
{
    std::vector<QWidget*> shown;
    for (const auto& column : m_columns) {
        column->box->setVisible(column->visible);
        if (column->visible) {
            shown.push_back(column->box);
        }
    }
    if (shown == m_placed) {
        return;
    }
    while (m_grid->count() > 0) {
        delete m_grid->takeAt(0);
    }
    m_placed = std::move(shown);
    for (QWidget* box : m_placed) {
        const int place = m_grid->count();
        m_grid->addWidget(box, place / columnsInRow, place % columnsInRow, Qt::AlignTop);
    }
}

void VirtualMappingWidget::Impl::orderTabStops()
{
    QWidget* previous = m_delete;
    for (const auto& column : m_columns) {
        QWidget::setTabOrder(previous, column->combo);
        previous = column->combo;
        for (CheckBox* mark : column->marks) {
            QWidget::setTabOrder(previous, mark);
            previous = mark;
        }
    }
}

void VirtualMappingWidget::Impl::showColumn(Column& column)
{
    column.isShown = true;
    const STChosenSoundCard* chosen = chosenOn(column.device);
    QStringList texts{text(QStringLiteral("None"))};
    std::vector<std::string> ids{std::string()};
    texts.reserve(static_cast<int>(column.offered.size()) + 2);
    ids.reserve(column.offered.size() + 2);
    int current = 0;
    std::uint32_t channels = chosen == nullptr ? 0 : chosen->channels;
    for (const STSoundCardInfo& card : column.offered) {
        if (chosen != nullptr && chosen->id == card.id) {
            current = static_cast<int>(ids.size());
            channels = card.channels;
        }
        texts.append(QString::fromStdString(card.caption));
        ids.push_back(card.id);
    }
    if (chosen != nullptr && current == 0) {
        current = static_cast<int>(ids.size());
        texts.append(QString::fromStdString(chosen->caption) + QLatin1Char(' ')
                     + text(QStringLiteral("SoundCardNotConnected")));
        ids.push_back(chosen->id);
    }
    column.ids = std::move(ids);
    const QSignalBlocker blocker(column.combo);
    if (texts != column.texts->stringList()) {
        column.texts->setStringList(texts);
    }
    column.combo->setCurrentIndex(current);
    column.combo->setToolTip(current == 0 ? QString() : texts[current]);

    const QString caption = !column.caption.empty() ? QString::fromStdString(column.caption)
                                                    : text(QStringLiteral("ThisMachine"));
    if (caption != column.label->text()) {
        column.label->setText(caption);
        column.label->setToolTip(caption);
        column.combo->setAccessibleName(caption);
    }
    showMarks(column, chosen, channels);
}

void VirtualMappingWidget::Impl::showMarks(Column& column, const STChosenSoundCard* chosen,
                                           std::uint32_t channels)
{
    channels = std::min(channels, mostSoundCardChannels);
    const std::size_t pairs = channels > 2 ? (channels + 1) / 2 : 0;
    const std::size_t before = column.marks.size();
    while (column.marks.size() > pairs) {
        column.marks.back()->hide();
        column.marks.back()->deleteLater();
        column.marks.pop_back();
    }
    while (column.marks.size() < pairs) {
        const std::size_t pair = column.marks.size();
        auto* mark = new CheckBox(column.box);
        const int place = static_cast<int>(pair);
        column.marksLayout->addWidget(mark, place / marksInRow, place % marksInRow);
        column.marks.push_back(mark);
        connect(mark, &CheckBox::clicked, this,
                [this, &column, pair](bool on) { markPair(column, pair, on); });
    }
    for (std::size_t pair = 0; pair < pairs; ++pair) {
        const std::size_t first = 2 * pair + 1;
        column.marks[pair]->setText(first == channels
                                        ? QString::number(first)
                                        : QStringLiteral("%1-%2").arg(first).arg(first + 1));
        column.marks[pair]->setAccessibleDescription(column.label->text());
        showValue(column.marks[pair], ((chosen->channelPairs >> pair) & 1U) != 0);
    }
    if (before != pairs) {
        orderTabStops();
    }
}

void VirtualMappingWidget::Impl::showAll()
{
    for (const auto& column : m_columns) {
        showColumn(*column);
    }
}

void VirtualMappingWidget::Impl::setTexts()
{
    m_nameLabel->setText(text(QStringLiteral("MappingName")));
    m_name->setAccessibleName(m_nameLabel->text());
    m_nameTip->setText(text(QStringLiteral("MappingNameInUse")));
    m_delete->setText(text(QStringLiteral("DeleteMapping")));
}

void VirtualMappingWidget::Impl::showName()
{
    const QString name = QString::fromStdString(m_info.name);
    const QSignalBlocker blocker(m_name);
    m_name->setText(name);
    m_delete->setAccessibleDescription(name); // which of the buttons of that text
    for (const auto& column : m_columns) {
        column->combo->setAccessibleDescription(name);
    }
}

void VirtualMappingWidget::Impl::refresh(const STSoundCardChangeInfo& change)
{
    const std::string& device = change.soundCard.device;
    STChosenSoundCard* chosen = chosenOn(device);
    switch (change.kind) {
    case SoundCardChangeName:
        m_info.name = change.name;
        showName();
        return;
    case SoundCardChangeLocalCard:
    case SoundCardChangeClusterCard:
    case SoundCardChangeChannels:
        if (change.soundCard.id.empty()) {
            m_info.soundCards.erase(std::remove_if(m_info.soundCards.begin(),
                                                   m_info.soundCards.end(),
                                                   [&](const STChosenSoundCard& card) {
                                                       return card.device == device;
                                                   }),
                                    m_info.soundCards.end());
        } else if (chosen != nullptr) {
            *chosen = change.soundCard;
        } else {
            m_info.soundCards.push_back(change.soundCard);
        }
        if (Column* column = columnOf(device)) {
            showColumn(*column);
        }
        return;
    default: // a deletion is the page's
        return;
    }
}

void VirtualMappingWidget::Impl::slotNameEdited()
{
    const std::string name = m_name->text().trimmed().toStdString();
    bool isFree = true;
    if (!name.empty() && name != m_info.name) {
        const auto known = read("slotNameEdited").value_or(STSoundCardMappingsInfo());
        isFree = std::none_of(known.mappings.begin(), known.mappings.end(), [&](const auto& other) {
            return other.id != m_info.id && other.name == name;
        });
        m_nameTip->setVisible(!isFree);
    }
    if (name.empty() || name == m_info.name || !isFree) {
        showName();
        return;
    }
    emit m_owner->sigMappingInfoChanged({m_info.id, SoundCardChangeName, name, {}});
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

void VirtualMappingWidget::Impl::choose(const Column& column, int item)
{
    const std::string& id = column.ids[static_cast<std::size_t>(item)];
    const STChosenSoundCard* chosen = chosenOn(column.device);
    if (chosen == nullptr ? id.empty() : chosen->id == id) {
        return;
    }
    STChosenSoundCard wanted;
    wanted.device = column.device;
    const auto card = std::find_if(column.offered.begin(), column.offered.end(),
                                   [&](const STSoundCardInfo& offer) { return offer.id == id; });
    if (card != column.offered.end()) {
        wanted.id = id;
        wanted.caption = card->caption;
        wanted.channels = card->channels;
    }
    emit m_owner->sigMappingInfoChanged(
        {m_info.id,
         column.device.empty() ? SoundCardChangeLocalCard : SoundCardChangeClusterCard,
         {},
         wanted});
}

void VirtualMappingWidget::Impl::markPair(const Column& column, std::size_t pair, bool on)
{
    const STChosenSoundCard* chosen = chosenOn(column.device);
    if (chosen == nullptr) {
        return;
    }
    STChosenSoundCard wanted = *chosen;
    const std::uint32_t bit = std::uint32_t(1) << pair;
    wanted.channelPairs = on ? wanted.channelPairs | bit : wanted.channelPairs & ~bit;
    emit m_owner->sigMappingInfoChanged({m_info.id, SoundCardChangeChannels, {}, wanted});
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
    m_impl->resetColumns(known);
    m_impl->resetOffers(known);
}

void VirtualMappingWidget::refreshMappingInfo(const STSoundCardChangeInfo& change)
{
    m_impl->refresh(change);
}

void VirtualMappingWidget::setSoundCardEnable(const std::string& device,
                                              const std::vector<std::string>& soundCards)
{
    Impl::Column* column = m_impl->columnOf(device);
    const STChosenSoundCard* chosen = m_impl->chosenOn(device);
    if (column != nullptr && chosen != nullptr && contains(soundCards, chosen->id)) {
        const STSoundCardInfo card{chosen->id, chosen->caption, chosen->channels};
        const bool isOffered =
            std::any_of(column->offered.begin(), column->offered.end(),
                        [&](const STSoundCardInfo& offer) { return offer.id == card.id; });
        if (!isOffered) {
            column->offered.push_back(card);
            m_impl->showColumn(*column);
        }
    }
}

void VirtualMappingWidget::setSoundCardDisable(const std::string& device,
                                               const std::vector<std::string>& soundCards)
{
    if (Impl::Column* column = m_impl->columnOf(device)) {
        auto& offered = column->offered;
        offered.erase(std::remove_if(offered.begin(), offered.end(),
                                     [&](const STSoundCardInfo& card) {
                                         return contains(soundCards, card.id);
                                     }),
                      offered.end());
        m_impl->showColumn(*column);
    }
}

void VirtualMappingWidget::deleteClusterDeviceSoundCard(const std::vector<std::string>& devices)
{
    m_impl->deleteColumns(devices);
}

void VirtualMappingWidget::setDeviceSoundCardVisible(const std::string& device, bool visible)
{
    if (Impl::Column* column = m_impl->columnOf(device)) {
        column->visible = visible;
        m_impl->placeColumns();
    }
}

void VirtualMappingWidget::translateLangauge()
{
    m_impl->setTexts();
    m_impl->showAll();
}

} // namespace mivo::settings

#include "virtualmappingwidget.moc"
