#pragma once

#include "mivohostapi/shortcuttypes.h"
#include "mivowidgets/export.h"

#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtGui/QKeySequence>
#include <QtWidgets/QWidget>

#include <string>

class QToolButton;

namespace mivo::widgets {

/// Covers one control of the host while shortcuts are edited, shows what triggers the control's
/// action, and lets the user bind a key or a control of a device to it. GUI thread.
///
/// Made hidden, as a child of the control that it covers, whose size it follows. With the focus it
/// takes the next key sequence, or asks for the next control of the device. Backspace and Delete
/// clear, Tab and Backtab go on to the next cover, Escape ends editing.
class MIVOWIDGETS_EXPORT ShortCutCover : public QWidget
{
    Q_OBJECT

public:
    /// For an action that its type identifies.
    ShortCutCover(EnumShortCutType index, const std::string& path, QWidget* covered);
    /// For an action that its path identifies, of type ShortCutOfPath.
    ShortCutCover(const std::string& path, QWidget* covered);
    ~ShortCutCover() override;

    /// @{
    /// The action that the cover stands for.
    ShortCutModuleType getShortCutType() const { return m_module; }
    EnumShortCutType getShortCutIndex() const { return m_index; }
    const std::string& getShortCutPath() const { return m_path; }
    const std::string& getPeripheralShortCutPath() const { return m_path; }
    /// @}

    /// What the clear button is called, for its tip and for screen readers.
    void setClearText(const QString& text);

    /// The key sequence, empty when none is bound.
    QString getShortCutStr() const { return keyText(PeripheralKeyboard); }
    /// How many texts all covers were given so far: while it is the same, each shows what it did.
    static unsigned givenTexts();
    /// What is bound of that kind, empty when nothing is.
    QString keyText(EnumPeripheralShortCutType kind) const { return m_texts.value(kind); }

public Q_SLOTS:
    /// Shows a key sequence as bound; empty, none.
    void shortCutStrChanged(const QString& text);
    /// Shows what is bound of that kind; empty, nothing.
    void updateShortCutCoverKey(EnumPeripheralShortCutType kind, const QString& text);
    /// Opens the cover for one kind of control, or closes it.
    void setShortCoverVisible(bool visible, EnumPeripheralShortCutType kind);
    /// Whether the control below acts: not while its shortcuts are edited.
    void acceptEventState(bool accepts);
    /// Gives the focus up.
    void setShortCoverClearFocus();

Q_SIGNALS:
    /// The user wants this key sequence for the action.
    void signalAddShortCutsItem(EnumShortCutType type, const std::string& path,
                                const std::string& shortCutStr, ShortCutModuleType moduleType);
    /// The user wants no key sequence for the action.
    void signalDelShortCutsItem(EnumShortCutType type, const std::string& path,
                                ShortCutModuleType moduleType);
    /// True: another action holds the sequence and keeps it.
    bool signalExistShortCutsItem(EnumShortCutType type, const std::string& path,
                                  const std::string& shortCutStr);
    /// True: the sequence belongs to the application.
    bool signalCheckRepeat(const QString& text);
    void signalCoverEsc();         ///< Escape: editing is to end
    void signalKeyEventComplete(); ///< a key sequence was entered
    /// The user wants the next control of the device for the action.
    void signalSetPeripheralBind(int index, const std::string& strOprkey);
    /// The user wants no control of the device for the action.
    void signalDelPeripheralBind(int index, const std::string& strOprkey);

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    ShortCutCover(ShortCutModuleType module, EnumShortCutType index, const std::string& path,
                  QWidget* covered);
    void bindKeys(const QString& text);
    void clearBinding();
    void setText(EnumPeripheralShortCutType kind, const QString& text);

    ShortCutModuleType m_module;
    EnumShortCutType m_index;
    std::string m_path;
    QToolButton* m_clear;
    EnumPeripheralShortCutType m_kind = PeripheralKeyboard;
    QMap<EnumPeripheralShortCutType, QString> m_texts;
    bool m_blocked = false; // the control below
    Qt::FocusPolicy m_focusPolicy;
};

/// A key press as text: key names joined by " + ", modifiers first, Ctrl before Shift before Alt;
/// empty while only modifiers are held. Any thread.
MIVOWIDGETS_EXPORT QString keySequenceText(int key, Qt::KeyboardModifiers modifiers);
/// As the layout names the key. With Ctrl, Alt or Win, a letter that is not Latin has the name that
/// the US layout has at its place, so that one binding holds in both. GUI thread.
MIVOWIDGETS_EXPORT QString keySequenceText(const QKeyEvent& event);

/// The shortcut of such a text; empty when it is none.
MIVOWIDGETS_EXPORT QKeySequence keySequenceOf(const QString& text);

} // namespace mivo::widgets
