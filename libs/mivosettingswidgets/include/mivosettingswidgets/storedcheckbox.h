#pragma once

#include "mivosettingswidgets/controls.h"
#include "mivosettingswidgets/export.h"
#include "mivosettingswidgets/queuedtypes.h"

#include <mivowidgets/checkbox.h>

namespace mivo::settings {

/// A check box that shows a value of the store. GUI thread, but for queueChecked().
class MIVOSETTINGSWIDGETS_EXPORT StoredCheckBox : public mivo::widgets::CheckBox
{
    Q_OBJECT

public:
    using CheckBox::CheckBox;

    /// Has the value shown from the event loop. Any thread.
    void queueChecked(bool on) { queueCall(this, "setChecked", on); }

public Q_SLOTS:
    /// Shows a value of the store: of the signals only shown() is emitted, so that the value is not
    /// written back.
    void setChecked(bool on)
    {
        showValue(this, on);
        Q_EMIT shown(on);
    }

Q_SIGNALS:
    void shown(bool on); ///< a value of the store is shown
};

} // namespace mivo::settings
