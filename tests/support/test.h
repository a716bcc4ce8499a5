#pragma once

// What nearly every test includes.

#include "support/dialogs.h"
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
#include <mivowidgets/tipdialog.h>

#include <gtest/gtest.h>

#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>
