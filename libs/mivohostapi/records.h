#pragma once

#include <QtCore/QString>

#include <ostream>
#include <tuple>
#include <vector>

namespace mivo::records {

inline void printField(std::ostream& out, const QString& text)
{
    out << text.toStdString();
}

template <typename Field>
void printField(std::ostream& out, const Field& field)
{
    out << field;
}

template <typename Value>
void printField(std::ostream& out, const std::vector<Value>& list)
{
    for (const Value& value : list) {
        out << '[';
        printField(out, value);
        out << ']';
    }
}

} // namespace mivo::records

/// Stands in a record behind its fields(): compares and prints records, for logs and for failures
/// of tests. As friends these operators take part for their own record only, so that a host may
/// have what operators it likes.
#define MIVO_RECORD(Record)                                                                        \
    friend bool operator==(const Record& a, const Record& b)                                       \
    {                                                                                              \
        return a.fields() == b.fields();                                                           \
    }                                                                                              \
    friend bool operator!=(const Record& a, const Record& b)                                       \
    {                                                                                              \
        return !(a == b);                                                                          \
    }                                                                                              \
    friend std::ostream& operator<<(std::ostream& out, const Record& record)                       \
    {                                                                                              \
        std::apply(                                                                                \
            [&out](const auto&... field) {                                                         \
                ((mivo::records::printField(out, field), out << "; "), ...);                       \
            },                                                                                     \
            record.fields());                                                                      \
        return out;                                                                                \
    }
