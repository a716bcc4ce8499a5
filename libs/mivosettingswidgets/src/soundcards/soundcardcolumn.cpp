#include "soundcards/soundcardcolumn.h"

#include "mivosettingswidgets/controls.h"
#include "mivosettingswidgets/texts.h"
#include "soundcards/cardbox.h"

#include <mivowidgets/alertlabel.h>
#include <mivowidgets/checkbox.h>

#include <QtCore/QEvent>
#include <QtCore/QStringListModel>
#include <QtWidgets/QLabel>

#include <algorithm>
#include <utility>

namespace mivo::settings {

using mivo::widgets::CheckBox;
using mivo::widgets::ComboBox;
using velorn::mediadispatch::STChosenSoundCard;

namespace {

constexpr int gap = 4;
constexpr int columnWidth = 240;
constexpr int labelHeight = 20; // for every script, so that the boxes of a row are level
constexpr int comboHeight = 26;
constexpr int mostMarksInRow = 3;

/// Assigns `next` to `value`; returns whether that changed it.
template <typename Value>
bool replace(Value& value, const Value& next)
{
    const bool isOther = !(value == next);
    if (isOther) {
        value = next;
    }
    return isOther;
}

/// Those of `cards` that the mapping may choose.
std::vector<const STSoundCardInfo*> offersOf(const std::vector<STSoundCardInfo>& cards,
                                             std::uint64_t mapping)
{
    std::vector<const STSoundCardInfo*> offers;
    offers.reserve(cards.size());
    for (const STSoundCardInfo& card : cards) {
        if (card.chosenIn == 0 || card.chosenIn == mapping) {
            offers.push_back(&card);
        }
    }
    return offers;
}

/// The same for a choice, which may be none.
bool replace(std::optional<STChosenSoundCard>& value, const STChosenSoundCard* next)
{
    const bool isOther = next == nullptr ? value.has_value() : !value || !(*value == *next);
    if (isOther) {
        value = next == nullptr ? std::nullopt : std::optional(*next);
    }
    return isOther;
}

bool contains(const std::vector<std::string>& ids, const std::string& id)
{
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

} // namespace

SoundCardColumn::SoundCardColumn(std::string deviceName, QWidget* editor)
    : QWidget(editor), device(std::move(deviceName)), m_label(new QLabel(this)),
      m_combo(new CardBox(this, [this](bool isOpen) { setListOpen(isOpen); })),
      m_texts(new QStringListModel(m_combo))
{
    m_label->setBuddy(m_combo);
    m_label->setTextFormat(Qt::PlainText);
    m_combo->setModel(m_texts);
    placeControls();
    connect(m_combo, qOverload<int>(&ComboBox::activated), this, &SoundCardColumn::choose);
}

void SoundCardColumn::setCards(const STDeviceSoundCards& known, std::uint64_t mapping,
                               const STChosenSoundCard* chosen)
{
    if (defersChange()) {
        return;
    }
    m_hasCards = !known.soundCards.empty();
    bool isOther = !m_isShown;
    isOther |= replace(m_caption, known.caption.empty() ? device : known.caption);
    isOther |= replace(m_chosen, chosen);
    const auto offers = offersOf(known.soundCards, mapping);
    if (isOther || !adaptOffers(offers)) {
        m_offered.resize(offers.size()); // keeps the elements, whose strings need no new memory
        std::transform(offers.begin(), offers.end(), m_offered.begin(),
                       [](const STSoundCardInfo* offer) { return *offer; });
        showAll();
    }
    m_isAsSet = true;
}

bool SoundCardColumn::adaptOffers(const std::vector<const STSoundCardInfo*>& offers)
{
    const auto isChosen = [this](const STSoundCardInfo& card) {
        return m_chosen && card.id == m_chosen->id;
    };
    constexpr std::ptrdiff_t few = 2;
    const auto more =
        static_cast<std::ptrdiff_t>(offers.size()) - static_cast<std::ptrdiff_t>(m_offered.size());
    if (std::abs(more) > few) {
        return false;
    }
    const QSignalBlocker blocker(m_combo);
    auto next = offers.begin();
    for (std::size_t at = 0; next != offers.end() || at < m_offered.size();) {
        const int item = static_cast<int>(at) + 1; // behind "None"
        const auto place = m_offered.begin() + static_cast<std::ptrdiff_t>(at);
        const auto isSame = [&place](const STSoundCardInfo* offer) { return *offer == *place; };
        if (place != m_offered.end() && std::none_of(next, offers.end(), isSame)) {
            if (isChosen(*place)) {
                return false;
            }
            m_texts->removeRow(item);
            m_offered.erase(place);
            continue;
        }
        if (place == m_offered.end() || !isSame(*next)) {
            if (isChosen(**next)) {
                return false;
            }
            m_texts->insertRow(item);
            m_texts->setData(m_texts->index(item), QString::fromStdString((*next)->caption));
            m_offered.insert(place, **next);
        }
        ++next;
        ++at;
    }
    return true;
}

void SoundCardColumn::setChosen(const STChosenSoundCard* chosen)
{
    if (!defersChange()) {
        replace(m_chosen, chosen);
        showAll(); // even if nothing changed: the box may show a request that was refused
    }
}

void SoundCardColumn::translate()
{
    if (!defersChange()) {
        showAll();
    }
}

bool SoundCardColumn::defersChange()
{
    m_isAsSet = false;
    m_isOutdated |= m_isListOpen;
    return m_isListOpen;
}

void SoundCardColumn::setListOpen(bool isOpen)
{
    m_isListOpen = isOpen;
    if (!isOpen && std::exchange(m_isOutdated, false)) {
        showAll();
        emit outdated();
    }
}

bool SoundCardColumn::isOffered(const std::string& id) const
{
    return std::any_of(m_offered.begin(), m_offered.end(),
                       [&id](const STSoundCardInfo& offer) { return offer.id == id; });
}

void SoundCardColumn::enable(const std::vector<std::string>& soundCards)
{
    if (!defersChange() && m_chosen && contains(soundCards, m_chosen->id)
        && !isOffered(m_chosen->id)) {
        m_offered.push_back({m_chosen->id, m_chosen->caption, m_chosen->channels});
        showAll();
    }
}

void SoundCardColumn::disable(const std::vector<std::string>& soundCards)
{
    if (defersChange()) {
        return;
    }
    m_offered.erase(
        std::remove_if(m_offered.begin(), m_offered.end(),
                       [&](const STSoundCardInfo& card) { return contains(soundCards, card.id); }),
        m_offered.end());
    showAll();
}

void SoundCardColumn::setMappingName(const QString& name)
{
    m_combo->setAccessibleDescription(name);
}

std::vector<QWidget*> SoundCardColumn::tabStops() const
{
    std::vector<QWidget*> stops{m_combo};
    stops.insert(stops.end(), m_marks.begin(), m_marks.end());
    return stops;
}

void SoundCardColumn::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange || event->type() == QEvent::FontChange
        || event->type() == QEvent::LayoutDirectionChange) {
        placeControls();
    }
}

void SoundCardColumn::showAll()
{
    m_isShown = true;
    QStringList texts{text(QStringLiteral("None"))};
    texts.reserve(static_cast<int>(m_offered.size()) + 2);
    int current = 0;
    std::uint32_t channels = m_chosen ? m_chosen->channels : 0;
    for (const STSoundCardInfo& card : m_offered) {
        if (m_chosen && m_chosen->id == card.id) {
            current = texts.size();
            channels = card.channels;
        }
        texts.append(QString::fromStdString(card.caption));
    }
    if (m_chosen && current == 0) {
        current = texts.size();
        texts.append(QString::fromStdString(m_chosen->caption) + QLatin1Char(' ')
                     + text(QStringLiteral("SoundCardNotConnected")));
    }
    const QSignalBlocker blocker(m_combo);
    if (texts != m_texts->stringList()) {
        m_texts->setStringList(texts);
    }
    m_combo->setCurrentIndex(current);
    const QString tip = current == 0 ? QString() : tipOf(texts[current]);
    if (tip != m_combo->toolTip()) {
        m_combo->setToolTip(tip);
    }

    const QString caption = !m_caption.empty() ? QString::fromStdString(m_caption)
                                               : text(QStringLiteral("ThisMachine"));
    if (caption != m_combo->accessibleName()) {
        m_combo->setAccessibleName(caption);
        m_label->setText(QString(caption).replace(QLatin1Char('&'), QLatin1String("&&")));
        m_label->setToolTip(tipOf(caption));
    }
    showMarks(channels);
}

void SoundCardColumn::showMarks(std::uint32_t channels)
{
    channels = std::min(channels, mostSoundCardChannels);
    const std::size_t all = (channels + 1) / 2;
    const bool playsNowhere = all > 0 && (m_chosen->channelPairs << (32 - all)) == 0;
    const std::size_t pairs = channels > 2 || playsNowhere ? all : 0;
    const std::size_t before = m_marks.size();
    while (m_marks.size() > pairs) {
        if (m_marks.back()->hasFocus()) {
            emit focusedMarkRemoved();
        }
        m_marks.back()->hide();
        m_marks.back()->deleteLater();
        m_marks.pop_back();
    }
    while (m_marks.size() < pairs) {
        auto* mark = new CheckBox(this);
        connect(mark, &CheckBox::clicked, this, &SoundCardColumn::markPairs);
        m_marks.push_back(mark);
    }
    for (std::size_t pair = 0; pair < pairs; ++pair) {
        const std::size_t first = 2 * pair + 1;
        m_marks[pair]->setText(first == channels
                                   ? QString::number(first)
                                   : QStringLiteral("%1-%2").arg(first).arg(first + 1));
        m_marks[pair]->setAccessibleDescription(m_combo->accessibleName());
        showValue(m_marks[pair], ((m_chosen->channelPairs >> pair) & 1U) != 0);
    }
    bool isHintOther = playsNowhere != (m_hint != nullptr);
    if (isHintOther && playsNowhere) {
        m_hint = new mivo::widgets::AlertLabel(this);
        m_hint->setObjectName(QStringLiteral("soundCardPlaysNowhere"));
        m_hint->setWordWrap(true);
    } else if (isHintOther) {
        delete std::exchange(m_hint, nullptr);
    }
    if (m_hint != nullptr) {
        const QString hint = text(QStringLiteral("SoundCardPlaysNowhere"));
        isHintOther |= hint != m_hint->text();
        m_hint->setText(hint);
    }
    if (before != pairs || isHintOther) {
        placeControls();
    }
    if (before != pairs) {
        emit tabStopsChanged();
    }
}

void SoundCardColumn::placeControls()
{
    const int line = fontMetrics().height();
    // A line of Chinese is up to half as high again as the font's size.
    const int more =
        line <= labelHeight ? 0 : std::max(line, fontInfo().pixelSize() * 3 / 2) - labelHeight;
    m_label->setGeometry(0, 0, columnWidth, labelHeight + more);
    m_combo->setGeometry(0, labelHeight + more + gap, columnWidth, comboHeight + more);
    int bottom = labelHeight + gap + comboHeight + 2 * more;
    int widest = 1;
    for (const CheckBox* mark : m_marks) {
        widest = std::max(widest, mark->sizeHint().width());
    }
    const int marksInRow = std::clamp(columnWidth / (widest + gap), 1, mostMarksInRow);
    int place = 0;
    for (CheckBox* mark : m_marks) {
        const int height = mark->sizeHint().height();
        const int width = columnWidth / marksInRow;
        if (place % marksInRow == 0) {
            bottom += gap + height;
        }
        const QRect area(place++ % marksInRow * width, bottom - height, width - gap, height);
        mark->setGeometry(QStyle::visualRect(layoutDirection(), {0, 0, columnWidth, bottom}, area));
        mark->show();
    }
    if (m_hint != nullptr) {
        m_hint->ensurePolished();
        const int height = m_hint->heightForWidth(columnWidth);
        m_hint->setGeometry(0, bottom + gap, columnWidth, height);
        m_hint->show();
        bottom += gap + height;
    }
    setFixedSize(columnWidth, bottom);
}

void SoundCardColumn::choose(int item)
{
    const std::size_t offer = static_cast<std::size_t>(item) - 1; // behind "None"
    if (item > 0 && offer == m_offered.size()) {
        return; // the item of the chosen card that is not connected
    }
    STChosenSoundCard soundCard;
    soundCard.device = device;
    if (item > 0) {
        const STSoundCardInfo& card = m_offered[offer];
        soundCard.id = card.id;
        soundCard.caption = card.caption;
        soundCard.channels = card.channels;
    }
    if (m_isShown && soundCard.id == (m_chosen ? m_chosen->id : std::string())) {
        return;
    }
    m_isShown = m_isAsSet = false; // until the answer, the box shows the request
    emit changeRequested(device.empty() ? mivo::SoundCardChangeLocalCard
                                        : mivo::SoundCardChangeClusterCard,
                         soundCard);
}

void SoundCardColumn::markPairs()
{
    if (!m_chosen) {
        return;
    }
    STChosenSoundCard soundCard = *m_chosen;
    for (std::size_t pair = 0; pair < m_marks.size(); ++pair) {
        const std::uint32_t bit = std::uint32_t(1) << pair;
        soundCard.channelPairs = m_marks[pair]->isChecked() ? soundCard.channelPairs | bit
                                                            : soundCard.channelPairs & ~bit;
    }
    m_isShown = m_isAsSet = false;
    emit changeRequested(mivo::SoundCardChangeChannels, soundCard);
}

} // namespace mivo::settings
