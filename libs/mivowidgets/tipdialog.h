#pragma once

#include "mivowidgets/dialog.h"

class QLabel;

namespace mivo::widgets {

class AlertLabel;
class PushButton;

/// A modal prompt: a tip, a smaller assist text, an accept button, and a cancel button that is
/// hidden until it is asked for. GUI thread.
class MIVOWIDGETS_EXPORT TipDialog : public Dialog
{
    Q_OBJECT

public:
    /// What the prompt is about: its icon.
    enum Kind { information = 0, question = 1, warning = 2 };
    /// How the prompt was closed.
    enum Result { dismissed = 0, accepted = 1, cancelled = 2 };

    explicit TipDialog(QWidget* parent = nullptr);

    /// The icon; a number that is no Kind shows none.
    void setTipKind(int kind);
    /// @{
    /// What the prompt says; plain text.
    void setTipText(const QString& text);
    QString tipText() const;
    /// @}

    /// Has screen readers speak the tip again, as they do when the prompt opens: it is another one
    /// by now.
    void announceTip();

    /// A smaller second text below; empty, there is none.
    void setAssistText(const QString& text);

    /// What the buttons say.
    void setButtonTexts(const QString& cancel, const QString& accept);

    /// Whether there is a second button beside the accept button.
    void setCancelButtonVisible(bool visible);

    /// Shows the prompt and returns, when it is closed, the pressed button: a Result. Escape, the
    /// window's close button and the end of the dialog's parent dismiss it. The caller may be gone
    /// by then: it runs an event loop of its own.
    int run();

    /// Runs a prompt for once: a Result. Without a cancel text it has only the accept button.
    static int ask(QWidget* parent, Kind kind, const QString& text, const QString& cancel,
                   const QString& accept, const QString& assist = {});

private:
    QLabel* m_icon;
    AlertLabel* m_tip;
    QLabel* m_assist;
    PushButton* m_cancel;
    PushButton* m_accept;
};

} // namespace mivo::widgets
