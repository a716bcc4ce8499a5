#pragma once

#include <QtWidgets/QComboBox>

namespace mivohost {

class Peripherals;

/// Chooses at which address of this machine OSC and DMX listen. GUI thread; `peripherals` must
/// outlive it.
class ListenAddressBox : public QComboBox
{
    Q_OBJECT

public:
    explicit ListenAddressBox(Peripherals& peripherals);

    /// Shows the addresses that there are now, in the language in force.
    void refill();

signals:
    void chosen();

private:
    Peripherals& m_peripherals;
};

} // namespace mivohost
