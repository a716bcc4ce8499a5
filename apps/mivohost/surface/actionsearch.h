#pragma once

#include "mivohostapi/shortcuttypes.h"

#include <zrtranslate/translator.h>

#include <QtCore/QTimer>
#include <QtWidgets/QWidget>

#include <memory>
#include <string>
#include <vector>

class QLineEdit;
class QPushButton;

namespace mivo::settings {
class ShortCutMgr;
}

namespace mivo::widgets {
class AlertLabel;
}

namespace mivohost {

class Peripherals;

/// Finds an action by its name, and by what triggers it: a key that is pressed, a control that is
/// moved, or a message that is sent. GUI thread; what it borrows must outlive it.
class ActionSearch : public QWidget
{
    Q_OBJECT

public:
    ActionSearch(const mivo::settings::ShortCutMgr& manager, Peripherals& peripherals);
    ~ActionSearch() override;

    /// Whether the name of an action, in any language, has the text that is looked for.
    bool matches(const std::string& textKey) const;

    /// While it is on, nothing that is pressed, moved or sent triggers anything, and all of it is
    /// told. Escape, another window and a disabled widget end it.
    void setFinding(bool on);
    bool isFinding() const { return m_timer.isActive(); }

    void setTexts();

signals:
    /// Other actions match.
    void changed();
    /// What was used triggers this action; of type 0, none.
    void found(int type);

protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void loadLanguages() const;
    /// What is shown while nothing has been used.
    void showIdle();
    void findKeys(const QString& keys);
    void findControls();
    void showResult(const QString& text);
    void showFound(int type, const std::string& path, const QString& control);

    const mivo::settings::ShortCutMgr& m_manager;
    Peripherals& m_peripherals;
    mutable std::vector<std::unique_ptr<velorn::trans::Translator>> m_languages; // one for each
    QLineEdit* m_text;
    QPushButton* m_find;
    mivo::widgets::AlertLabel* m_result;
    QTimer m_timer;
};

} // namespace mivohost
