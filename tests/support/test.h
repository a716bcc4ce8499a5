#pragma once

// What nearly every test includes.

#include "support/dialogs.h"
#include "support/files.h"
#include "support/logcapture.h"
#include "support/testruntime.h"
#include "support/teststore.h"

#include <mivosettingswidgets/settingwdigettranslatemanager.h>
#include <mivowidgets/checkbox.h>
#include <mivowidgets/combobox.h>
#include <mivowidgets/editbox.h>
#include <mivowidgets/pushbutton.h>
#include <mivowidgets/spineditbox.h>
#include <mivowidgets/timeeditbox.h>

#include <future>
#include <optional>
