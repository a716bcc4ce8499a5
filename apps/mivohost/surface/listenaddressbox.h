#pragma once

#include <sigslot/signal.hpp>

#include <QtWidgets/QComboBox>

namespace mivohost {

class Peripherals;

/// Chooses at which address of this machine OSC and DMX listen. GUI thread; `peripherals` must
/// outlive it.
class ListenAddressBox : public QComboBox
{
public:
    explicit ListenAddressBox(Peripherals& peripherals);

    /// Shows the addresses that there are now, in the language in force.
    void refill();

private:
    Peripherals& m_peripherals;
    sigslot::scoped_connection m_changes;
};

} // namespace mivohost
