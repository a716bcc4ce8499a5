#pragma once

#include "mivohostapi/shortcuttypes.h"
#include "peripherals/shortcutfileretry.h"
#include "surface/actionlog.h"
#include "surface/bindingstransfer.h"
#include "surface/focusrefuge.h"
#include "surface/keytriggers.h"

#include <mivosettingswidgets/shortcutmgr.h>

#include <sigslot/signal.hpp>

#include <QtCore/QTimer>
#include <QtWidgets/QWidget>

#include <string>
#include <vector>

class QComboBox;
class QLabel;
class QPushButton;

namespace mivohost {

class ActionGrid;
class ActionTools;
class HintRow;
class Peripherals;

/// A button for each action that keys and controllers can trigger, and the editing of what triggers
/// them. GUI thread; `peripherals` must outlive the panel.
///
/// An action that is triggered flashes its button and is written to the log, as ActionLog does it.
class ActionPanel : public QWidget
{
    Q_OBJECT

public:
    /// Reads the bindings of keys; those of devices are the services'.
    explicit ActionPanel(Peripherals& peripherals);
    ~ActionPanel() override;

    void setTexts();

    bool isEditing() const { return m_editing; }
    void setEditing(bool on);

    /// While it is locked, nothing triggers anything and nothing is edited. While it is edited,
    /// nothing triggers anything either. Both cancel an export or import that is waited for.
    void setLocked(bool locked);

    BindingsTransfer& transfer() { return m_transfer; }
    ActionTools& tools() { return *m_tools; }
    mivo::settings::ShortCutMgr& shortcuts() { return m_manager; }

signals:
    /// A text's key and what is put into it, as MainWindow::showNotice().
    void failed(const QString& key, const QString& argument);
    /// The key of a text that the operator is to know.
    void told(const QString& key);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void addConnections();
    void endEditing();
    EnumPeripheralShortCutType kind() const;
    bool hasBindings() const;
    void showState();
    void showMatches();
    void showFound(int type);
    void setKind();
    void trigger(int type, const std::string& path, const std::string& control);
    void setBindings(const STLinkShortCutInfo& info);
    void clearAll();
    void exportAll();
    void importAll();
    QString askForBindings(bool saving);
    bool confirm(const char* question, const char* button);

    Peripherals& m_peripherals;
    bool m_editing = false;
    bool m_locked = false;
    bool m_hasKeys = false; // any is bound
    QLabel* m_heading;
    QPushButton* m_edit;
    QComboBox* m_kind;
    QPushButton* m_clear;
    QPushButton* m_export;
    QPushButton* m_import;
    QPushButton* m_lock;
    HintRow* m_hint;
    ActionGrid* m_grid;
    FocusRefuge m_focus{*this};
    std::vector<sigslot::scoped_connection> m_connections;
    ActionLog m_log;
    KeyTriggers m_keys;
    mivo::settings::ShortCutMgr m_manager; // knows covers and services, and goes before them
    BindingsTransfer m_transfer;
    ShortcutFileRetry m_fileRetry; // its end may save the keys, which the panel follows
    ActionTools* m_tools;
};

} // namespace mivohost
