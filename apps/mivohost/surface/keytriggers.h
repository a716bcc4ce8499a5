#pragma once

#include "mivohostapi/shortcuttypes.h"

#include <QtCore/QHash>
#include <QtCore/QObject>
#include <QtCore/QString>

#include <vector>

class QKeyEvent;

namespace mivohost {

/// Carries out what keys are bound to, in every window of the program. GUI thread.
///
/// A bound sequence goes before menus and buttons. It does nothing while a dialog waits for an
/// answer, and where text is being entered only with Ctrl, Alt or as a function key. A key that is
/// held down counts once. Of several actions with one sequence keyHolders() tells which has it.
class KeyTriggers : public QObject
{
    Q_OBJECT

public:
    KeyTriggers();

    /// Those of actions that this version has.
    void setBindings(const std::vector<STShortCutItem>& bindings);
    /// Off at first.
    void setEnabled(bool on) { m_enabled = on; }

signals:
    void triggered(int type, const std::string& path, const std::string& keys);

protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;

private:
    const STShortCutItem* bindingOf(const QKeyEvent& event) const;

    bool m_enabled = false;
    QHash<QString, STShortCutItem> m_bindings; // by sequence
};

} // namespace mivohost
