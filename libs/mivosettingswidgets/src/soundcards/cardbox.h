#pragma once

#include <mivoqutils/post.h>
#include <mivowidgets/combobox.h>

#include <QtCore/QEvent>
#include <QtWidgets/QAbstractItemView>

#include <functional>
#include <utility>

namespace mivo::settings {

/// A combo box that creates its list when it is first opened: there may be hundreds of these boxes.
/// `listShown` is called when the list has opened, and after it was closed and a click in it has
/// been handled.
class CardBox : public mivo::widgets::ComboBox
{
public:
    CardBox(QWidget* parent, std::function<void(bool isOpen)> listShown)
        : ComboBox(parent), m_listShown(std::move(listShown))
    {}

    void showPopup() override
    {
        if (!std::exchange(m_hasList, true)) {
            view()->installEventFilter(this);
        }
        view()->setFont(font());
        ComboBox::showPopup();
        m_listShown(view()->isVisible());
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Hide) {
            qutils::post(this, [this] { m_listShown(view()->isVisible()); });
        }
        return ComboBox::eventFilter(watched, event);
    }

protected:
    void changeEvent(QEvent* event) override
    {
        // The base class would create the list, only to pass the font on to it.
        if (m_hasList || event->type() != QEvent::FontChange) {
            ComboBox::changeEvent(event);
        } else {
            QWidget::changeEvent(event);
        }
    }

private:
    std::function<void(bool isOpen)> m_listShown;
    bool m_hasList = false;
};

} // namespace mivo::settings
