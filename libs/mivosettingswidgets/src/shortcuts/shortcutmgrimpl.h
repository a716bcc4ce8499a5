#pragma once

#include "mivosettingswidgets/shortcutmgr.h"
#include "shortcuts/devicebindings.h"
#include "shortcuts/keytable.h"
#include "shortcuts/shortcutcovers.h"

#include <optional>
#include <string>
#include <vector>

namespace mivo::settings {

/// Connects covers, keys and devices. Its slots are connected to the covers.
class ShortCutMgr::Impl : public QObject
{
    Q_OBJECT

    using SDeviceBindInfo = mivo::peripheralcontrol::SDeviceBindInfo;
    using ShortCutCover = mivo::widgets::ShortCutCover;

public:
    explicit Impl(ShortCutMgr* manager);

    DeviceBindings devices;
    KeyTable keys;
    ShortCutCovers covers;
    EnumPeripheralShortCutType currentKind = PeripheralKeyboard;
    std::string currentPath;
    bool projectFileLoadComplete = false;

    void save();
    void pushTexts() { covers.pushTexts(keys.splitLists(), keys.state()); }
    /// What takeTexts() of the covers does, by edit() of the keys.
    void takeTexts();
    /// Empties the table and the covers, and returns what the table held.
    std::vector<STShortCutItem> takeKeys();
    void clearKeys();
    /// Tells of each action that has other keys now.
    void tellChanges(const std::vector<STShortCutItem>& before,
                     const std::vector<STShortCutItem>& after);
    void clearPeripheral(EnumPeripheralShortCutType kind);
    void rebind(EnumPeripheralShortCutType kind, const SDeviceBindInfo& info);
    void showPendingTexts() const;
    void showBindings(EnumPeripheralShortCutType kind, const QList<ShortCutCover*>& shown) const;
    void open(bool show, EnumPeripheralShortCutType kind);

    template <typename Service>
    bool use(Borrowed<Service>& borrowed, Service* service, EnumPeripheralShortCutType kind);

public slots:
    void addShortCutsItem(EnumShortCutType type, const std::string& path,
                          const std::string& shortCutStr, ShortCutModuleType moduleType);
    void delShortCutsItem(EnumShortCutType type, const std::string& path,
                          ShortCutModuleType moduleType);
    bool existShortCutsItem(EnumShortCutType type, const std::string& path,
                            const std::string& shortCutStr);
    bool systemShortCutRepeat(const QString& text);
    void bindShortCutAndCover(const QList<ShortCutCover*>& coverList);
    void disBindShortCutAndCover(const QList<ShortCutCover*>& coverList);
    void onSaveShortCutInfoList(bool isSave);
    void delProgramCoverPtr(ShortCutCover* cover);
    void setPeripheralBind(int index, const std::string& strOprkey);
    void delPeripheralBind(int index, const std::string& strOprkey);
    void setOscBindData(EnumPeripheralShortCutType enCurType);
    void onSetShortCoverVisible(bool flag);
    void addPeripheralBind(const SDeviceBindInfo& bindDesc);
    bool hasPeripheralBinded(EnumPeripheralShortCutType kind) const;
    QString getBindedShortCutKeyName(int oprKey, const std::string& strOprKey) const;
    void reripheralBind(int nOprKey, std::string strOprKey, std::string strKeyValue,
                        bool bBindSuccess, EnumPeripheralShortCutType enType);

private slots:
    void deliverWaiting() { devices.deliverWaiting(); }

private:
    static bool confirmMove();
    void learnNext(const ShortCutCover* cover);
    void stopLearning();
    void emitMessage(const ControlMessage& message);

    ShortCutMgr* m_manager;
    std::optional<EnumPeripheralShortCutType> m_opened; // for which kind the covers are open
    const ShortCutCover* m_learner = nullptr; // the cover for which a control is being learned
};

template <typename Service>
bool ShortCutMgr::Impl::use(Borrowed<Service>& borrowed, Service* service,
                            EnumPeripheralShortCutType kind)
{
    if (!devices.use(borrowed, service, kind)) {
        return false;
    }
    showBindings(kind, covers.all());
    return true;
}

} // namespace mivo::settings
