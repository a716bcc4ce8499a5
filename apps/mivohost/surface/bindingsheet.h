#pragma once

#include "base/filerequests.h"
#include "mivohostapi/signals.h"
#include "surface/bindingsmodel.h"

#include <QtWidgets/QDialog>

#include <memory>

class QLabel;
class QLineEdit;
class QPushButton;
class QTableView;

namespace mivohost {

class WaitingLine;

/// A window with all bindings side by side, which it saves as a sheet to be printed. GUI thread;
/// what it borrows must outlive it.
class BindingSheet : public QDialog
{
    Q_OBJECT

public:
    BindingSheet(const mivo::settings::ShortCutMgr& manager, Peripherals& peripherals,
                 QWidget* parent = nullptr);
    ~BindingSheet() override;

    /// Shows the window, or brings it to the front.
    void openWindow();
    void setTexts();

    /// Writes what is shown to a file that the user chose, as HTML or else as PDF. It may lie on a
    /// drive that does not answer: what is not waited for any more is told as a failure.
    void saveTo(const QString& path);
    FileRequests& requests() { return m_requests; }

signals:
    /// A text's key and what is put into it, as MainWindow::showNotice().
    void failed(const QString& key, const QString& argument);

private:
    struct Layout;

    void refill();
    void askAndSave(const QStringList& suffixes);
    void showState(const QString& state);

    const mivo::settings::ShortCutMgr& m_manager;
    Peripherals& m_peripherals;
    BindingsModel m_model;
    BindingsFilter m_filter;
    FileRequests m_requests;
    std::shared_ptr<Layout> m_layout; // the threads that make a PDF have it, too
    QTableView* m_view;
    QLineEdit* m_text;
    QPushButton* m_pdf;
    QPushButton* m_html;
    WaitingLine* m_waiting;
    QLabel* m_state;
    const sigslot::scoped_connection m_replaced;
};

} // namespace mivohost
