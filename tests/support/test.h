#pragma once

// What nearly every test includes.

#include "support/dialogs.h"
#include "support/hostlanguage.h"
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

inline void writeFile(const QString& path, const QByteArray& content = {})
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    EXPECT_EQ(file.write(content), content.size());
}

/// Empty where there is no such file.
inline QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
