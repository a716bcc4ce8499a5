#pragma once

#include "mivohostapi/soundcardrecords.h"
#include "mivosettingswidgets/export.h"

#include <QtWidgets/QWidget>

#include <memory>

class IZRRuntime;
class MivoSettings;

namespace mivo::settings {

/// The editor of one sound-card mapping: its name, and for each device a column in which one of the
/// device's cards is chosen, and the channels of that card.
///
/// GUI thread. What the user changes is requested by sigMappingInfoChanged(); calls of the
/// functions below never emit it. A chosen card that is not there is shown as not connected and
/// stays chosen. Runtime and store are the host's. There are no columns before the first reset.
class MIVOSETTINGSWIDGETS_EXPORT VirtualMappingWidget : public QWidget
{
    Q_OBJECT

public:
    /// `runtime` must not be null while there is a store.
    VirtualMappingWidget(const velorn::mediadispatch::STSoundCardMappingInfo& info,
                         IZRRuntime* runtime, MivoSettings* settings, QWidget* parent = nullptr);
    ~VirtualMappingWidget() override;

    /// Sets the store to read from; with null, the editor keeps showing what it shows.
    void setSettings(MivoSettings* settings);

    /// Reads what cards there are, and which are taken, and offers those that are free in the
    /// columns that are there. Without a store, nothing changes.
    void resetSoundCardsCombobox();
    /// With what was read before, for several editors at once.
    void resetSoundCardsCombobox(const STSoundCardMappingsInfo& known);

    /// @{
    /// The same, after making the columns anew: this machine, then each device that has cards or
    /// on which one is chosen.
    void resetSoundCardWidget();
    void resetSoundCardWidget(const STSoundCardMappingsInfo& known);
    /// @}

    /// Shows one change of this mapping; as resetSoundCardWidget() where a card of a device without
    /// a column is chosen.
    void refreshMappingInfo(const mivo::STSoundCardChangeInfo& change);

    /// @{
    /// Cards of a device, by their ids, that have come or gone. Those that may be chosen now are
    /// offered from the next reset on.
    void setSoundCardEnable(const std::string& device, const std::vector<std::string>& soundCards);
    void setSoundCardDisable(const std::string& device, const std::vector<std::string>& soundCards);
    /// @}

    /// Removes the columns of these devices; the cards that are chosen on them stay chosen.
    void deleteClusterDeviceSoundCard(const std::vector<std::string>& devices);

    /// Shows or hides the column of a device.
    void setDeviceSoundCardVisible(const std::string& device, bool visible);

    /// Sets every text again in the translator's language.
    void translateLangauge();

Q_SIGNALS:
    /// The user wants this change, which is not shown as done until refreshMappingInfo().
    void sigMappingInfoChanged(const mivo::STSoundCardChangeInfo& change);

private:
    class MIVOSETTINGSWIDGETS_NO_EXPORT Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace mivo::settings
