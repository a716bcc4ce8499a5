#pragma once

#include "peripherals/inputdecoder.h"
#include "surface/focusrefuge.h"
#include "surface/inputmodel.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>
#include <QtWidgets/QDialog>

#include <array>
#include <cstddef>
#include <vector>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableView;

namespace mivohost {

class Peripherals;

/// A window that shows what comes in by MIDI, DMX and OSC, as it comes. GUI thread; `peripherals`
/// must outlive it. While it is not shown, the services do nothing for it.
class InputMonitor : public QDialog
{
    Q_OBJECT

public:
    explicit InputMonitor(Peripherals& peripherals, QWidget* parent = nullptr);
    ~InputMonitor() override;

    /// Shows the window, or brings it to the front.
    void openWindow();
    /// Shows it as well, with what comes of one kind, but leaves the focus where it is.
    void showKind(EnumPeripheralShortCutType kind);

    /// Takes what has come in, sixty times a second while the window is shown. What comes
    /// after a pause is shown at once, and a flood some fifteen times a second.
    void read();
    /// Forgets all of it.
    void clear();

    void setTexts();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void addConnections();
    EnumPeripheralShortCutType kind() const;
    void filter();
    void showState();
    void copy() const;

    Peripherals& m_peripherals;
    InputDecoder m_decoder;
    InputModel m_model;
    QTableView* m_view;
    QComboBox* m_kind;
    QLineEdit* m_text;
    QPushButton* m_pause;
    QPushButton* m_clear;
    QPushButton* m_copy;
    QLabel* m_empty;
    QLabel* m_state;
    FocusRefuge m_focus{*this};
    QTimer m_timer;
    std::vector<InputMessage> m_messages; // used again and again
    std::vector<ReceivedInput> m_inputs;  // that are not in the model yet
    QElapsedTimer m_refreshed;            // the model
    QElapsedTimer m_counted;
    std::array<int, 4> m_counts{}; // by kind, since m_counted
    std::array<int, 4> m_rates{};  // a second
    std::size_t m_dropped = 0;     // since it was shown
};

} // namespace mivohost
