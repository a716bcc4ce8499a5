#pragma once

#include <QtCore/QString>

namespace mivohost {

// Each record is kept as one text, so that a crash leaves it whole: its fields in a fixed order,
// with '|' between them.

/// False for a text that is no such record; `record` then holds anything.
template <typename Record>
bool readRecord(const QString& text, Record& record);

/// The text of a record, also of one that readRecord() refuses.
template <typename Record>
QString writeRecord(const Record& record);

} // namespace mivohost
