#pragma once

#include "mivohostapi/soundcardrecords.h"

#include <QtWidgets/QWidget>

#include <optional>
#include <string>
#include <vector>

class QLabel;
class QStringListModel;

namespace mivo::widgets {
class CheckBox;
class ComboBox;
} // namespace mivo::widgets

namespace mivo::settings {

/// One device in the editor of a sound-card mapping: its name, a box in which one of its cards is
/// chosen, and a mark for each channel pair of a card that has more than one.
///
/// GUI thread. It shows the cards and the choice that its owner sets, and emits changeRequested()
/// for what the user does. While its list is open it ignores its owner's calls, so that no item
/// changes under the pointer; if it has ignored one, it emits outdated() when the list is closed.
/// Its widgets have fixed positions: layouts for some hundred columns take too long.
class SoundCardColumn : public QWidget
{
    Q_OBJECT

public:
    SoundCardColumn(std::string deviceName, QWidget* editor);

    const std::string device;

    /// Offers the cards of the device that no mapping but this one has chosen, and shows the chosen
    /// one, if any.
    void setCards(const STDeviceSoundCards& known, std::uint64_t mapping,
                  const velorn::mediadispatch::STChosenSoundCard* chosen);
    /// Whether another setCards() with the same cards and choice would change nothing.
    bool isAsSet() const { return m_isAsSet; }
    void setChosen(const velorn::mediadispatch::STChosenSoundCard* chosen);

    /// Offers the chosen card again if it is one of these.
    void enable(const std::vector<std::string>& soundCards);
    /// Offers none of these any more.
    void disable(const std::vector<std::string>& soundCards);

    /// The name of the mapping, for screen readers.
    void setMappingName(const QString& name);
    void translate();

    /// Whether the device has no card, and none of it is chosen.
    bool isEmpty() const { return !m_hasCards && !m_chosen; }

    /// The combo box, then the marks in their order.
    std::vector<QWidget*> tabStops() const;

signals:
    /// The user has chosen another card (none if its id is empty), or other channels of the chosen
    /// card.
    void changeRequested(mivo::EnumSoundCardChange kind,
                         const velorn::mediadispatch::STChosenSoundCard& soundCard);
    void tabStopsChanged();
    /// Emitted before a mark that has the focus is removed.
    void focusedMarkRemoved();
    /// The list was closed, and a call was ignored while it was open: the owner has to set cards
    /// and choice again.
    void outdated();

protected:
    void changeEvent(QEvent* event) override;

private:
    bool isOffered(const std::string& id) const;
    /// Offers these, by adding and removing the few items that differ. False, with something half
    /// done, when all has to be shown anew: more differ, or the chosen card does.
    bool adaptOffers(const std::vector<const STSoundCardInfo*>& offers);
    /// Whether the list is open, so that the caller must not change anything now.
    bool defersChange();
    void setListOpen(bool isOpen);
    void showAll();
    void showMarks(std::uint32_t channels);
    void placeControls();
    void choose(int item);
    void markPairs();

    std::string m_caption;
    std::vector<STSoundCardInfo> m_offered;
    std::optional<velorn::mediadispatch::STChosenSoundCard> m_chosen;
    bool m_hasCards = false; // whether the device has any card, free or taken
    bool m_isShown = false;  // whether the controls show exactly the caption, offers and choice
    bool m_isAsSet = false;  // and nothing was set, asked for or put off since setCards()
    bool m_isListOpen = false;
    bool m_isOutdated = false;

    QLabel* m_label;
    mivo::widgets::ComboBox* m_combo;
    /// Of the items of the combo box: none, what is offered, and the chosen one if it is not.
    QStringListModel* m_texts;
    std::vector<mivo::widgets::CheckBox*> m_marks; // of the channel pairs
    QLabel* m_hint = nullptr; // exists only while no channel pair of the chosen card is marked
};

} // namespace mivo::settings
