#pragma once

#include <QtCore/QString>

#include <vector>

namespace mivohost {

// Each record is kept as one text, so that a crash leaves it whole: its fields in a fixed order,
// with '|' between them.

/// False for a text that is no such record; `record` then holds anything.
template <typename Record>
bool readRecord(const QString& text, Record& record);

/// The text of a record, also of one that readRecord() refuses.
template <typename Record>
QString writeRecord(const Record& record);

/// A field as it is named outside of the text.
struct RecordField
{
    /// Of its value.
    enum Kind { flag, number, text };

    const char* name; ///< in ASCII
    Kind kind;        ///< of its value
};

/// The fields in the order of the text. Of a text, only the last may contain '|'.
template <typename Record>
std::vector<RecordField> recordFields();

} // namespace mivohost
