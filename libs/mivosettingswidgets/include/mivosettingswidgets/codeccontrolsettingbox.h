#pragma once

#include "mivosettingswidgets/settingpage.h"

#include <memory>

namespace mivo {
struct DynamicRangeConfig;
}
namespace mivo::mediaoutput {
class IPhysicsOutputMgr;
class IRenderFacade;
} // namespace mivo::mediaoutput

namespace mivo::settings {

/// The output pipeline: the graphics card, the standard of colour, and the dynamic range. All of it
/// takes effect after a restart. Common contract: ISettingBox.
///
/// setSettings(): a null store, or no runtime, is logged and changes nothing. unsetSettings()
/// without a store, or without a runtime, is logged.
class MIVOSETTINGSWIDGETS_EXPORT CodecControlSettingBox : public SettingPage
{
    Q_OBJECT

public:
    explicit CodecControlSettingBox(QWidget* parent = nullptr);
    ~CodecControlSettingBox() override;

    /// Borrowed, and null until it is set; must outlive the page. To be set before the store, so
    /// that the page follows the list of cards.
    void setRenderFacade(mivo::mediaoutput::IRenderFacade* facade);

    /// Told of each change of the dynamic range; gone is logged then.
    void setPhysicsOutputMgr(std::weak_ptr<mivo::mediaoutput::IPhysicsOutputMgr> manager);

    /// Lists the graphics cards anew and chooses the stored one, or where that is absent the one in
    /// use, which writes nothing. Without a runtime or a facade, a line in the log and nothing
    /// else.
    void updateDisplayCardInfo();

    /// Shows a dynamic range, and the bit depths of its mode; writes nothing.
    void updateDynamicRangeConfig(const DynamicRangeConfig& config);

private:
    class MIVOSETTINGSWIDGETS_NO_EXPORT Impl;
};

} // namespace mivo::settings
