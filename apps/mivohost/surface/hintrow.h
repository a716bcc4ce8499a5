#pragma once

#include "mivohostapi/shortcuttypes.h"

#include <sigslot/signal.hpp>

#include <QtWidgets/QWidget>

#include <string>
#include <vector>

class QLabel;

namespace mivo::widgets {
class AlertLabel;
}

namespace mivohost {

class ListenAddressBox;
class Peripherals;

/// How something is bound while shortcuts are edited, or why not, and the address at which OSC and
/// DMX listen; while the screen is locked, how it is unlocked. Hidden otherwise. Follows the
/// inputs. GUI thread; `peripherals` must outlive it.
class HintRow : public QWidget
{
public:
    explicit HintRow(Peripherals& peripherals);

    void setTexts();
    void setState(EnumPeripheralShortCutType kind, bool isEditing, bool isLocked);
    /// Where OSC controllers are to send to, if it listens at all addresses.
    void setOscUrl(const std::string& url);

private:
    void showHint();

    Peripherals& m_peripherals;
    EnumPeripheralShortCutType m_kind = PeripheralKeyboard;
    bool m_isLocked = false;
    std::string m_oscUrl;
    mivo::widgets::AlertLabel* m_hint;
    QLabel* m_addressLabel;
    ListenAddressBox* m_address;
    std::vector<sigslot::scoped_connection> m_connections;
};

} // namespace mivohost
