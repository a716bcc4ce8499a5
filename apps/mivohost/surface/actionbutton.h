#pragma once

#include <QtCore/QTimer>
#include <QtWidgets/QPushButton>

#include <string>

namespace mivo::widgets {
class ShortCutCover;
}

namespace mivohost {

/// The button of an action, with the cover on which its shortcuts are edited. GUI thread.
class ActionButton : public QPushButton
{
public:
    ActionButton(int actionType, const std::string& actionPath);

    int type() const { return m_type; }
    const std::string& path() const { return m_path; }
    /// The key of the action's text: its path without the prefix.
    const std::string& textKey() const { return m_textKey; }
    mivo::widgets::ShortCutCover* cover() const { return m_cover; }

    void setTexts();
    /// Leaves room below its text for the text of the binding.
    void setEditing(bool on);
    /// Is highlighted for a moment: the action was triggered.
    void flash();
    /// Is marked and scrolled to: it is what was looked for.
    void setFound(bool on);

private:
    void setState(const char* name, bool on);

    const int m_type;
    const std::string m_path;
    const std::string m_textKey;
    mivo::widgets::ShortCutCover* m_cover;
    QTimer m_flash;
};

} // namespace mivohost
