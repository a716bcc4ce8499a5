#pragma once

#include <mivowidgets/alertlabel.h>

#include <string>

class QHBoxLayout;

namespace mivo::widgets {
class PushButton;
class SpinEditBox;
} // namespace mivo::widgets

namespace mivo::settings {

/// Says why an input does not receive; hidden where there is no reason. GUI thread.
class FailureLabel : public mivo::widgets::AlertLabel
{
public:
    explicit FailureLabel(QWidget* parent);
    void setReason(const std::string& reason);
};

/// The controls of one listening port of the network page. GUI thread.
struct PortRow
{
    explicit PortRow(QWidget* page);

    void show(bool isOpen, int number);
    void showFailure(const std::string& reason);

    QLabel* label;
    mivo::widgets::SpinEditBox* port;
    mivo::widgets::PushButton* open;
    mivo::widgets::PushButton* close;
    QLabel* status; ///< shown while it is open
    FailureLabel* failure;
    QHBoxLayout* layout;      ///< the page's column takes it
    bool isRequested = false; ///< to be open
};

} // namespace mivo::settings
