#include "mivohostkit/recordcodecs.h"

#include "mivohostapi/peripherals.h"
#include "mivohostapi/settingsrecords.h"

#include <QtCore/QLocale>
#include <QtCore/QStringList>
#include <QtCore/QTime>

#include <algorithm>
#include <string>

namespace mivohost {

using mivo::peripheralcontrol::SAddDMXInfo;
using mivo::peripheralcontrol::SAddOSCInfo;

namespace {

class Reader
{
public:
    explicit Reader(const QString& text) : m_fields(text.split('|')) {}

    void flag(bool& field) { number(field, 0, 1); }
    template <typename Number>
    void number(Number& field, int lowest, int highest)
    {
        bool isNumber = false;
        const int value = next().toInt(&isNumber);
        require(isNumber && value >= lowest && value <= highest);
        field = static_cast<Number>(value);
    }
    void timeOfDay(std::string& field)
    {
        const QString text = next();
        require(QLocale::c().toTime(text, QStringLiteral("hh:mm:ss")).isValid());
        field = text.toStdString();
    }
    /// The last field, which may contain separators.
    void rest(std::string& field)
    {
        require(!m_fields.isEmpty());
        field = m_fields.join('|').toStdString();
        m_fields.clear();
    }
    void require(bool condition) { m_isRecord = m_isRecord && condition; }

    bool isRecord() const { return m_isRecord && m_fields.isEmpty(); }

private:
    QString next() { return m_fields.isEmpty() ? QString() : m_fields.takeFirst(); }

    QStringList m_fields; // those that were not read yet
    bool m_isRecord = true;
};

class Writer
{
public:
    void flag(bool field) { number(field, 0, 1); }
    template <typename Number>
    void number(Number field, int /*lowest*/, int /*highest*/)
    {
        m_fields += QString::number(field);
    }
    void timeOfDay(const std::string& field) { rest(field); }
    void rest(const std::string& field) { m_fields += QString::fromStdString(field); }
    void require(bool /*condition*/) {}

    QString text() const { return m_fields.join('|'); }

private:
    QStringList m_fields;
};

// The fields of each record in the order in which they are kept, for a Reader or a Writer.

template <typename Fields>
void visit(Fields& fields, STPortInfo& record)
{
    fields.flag(record.open);
    fields.number(record.port, 0, 65534);
}

template <typename Fields>
void visit(Fields& fields, STMivoTimedShutdownSettings& record)
{
    fields.flag(record.enabled);
    fields.number(record.weekDayIndex, 0, 7);
    fields.timeOfDay(record.time);
}

template <typename Fields>
void visit(Fields& fields, STMivoTimedAutomaticRestartSettings& record)
{
    fields.flag(record.enabled);
    fields.number(record.monthIndex, 0, 12);
    fields.number(record.dayIndex, 0, 31);
    fields.timeOfDay(record.time);
}

template <typename Fields>
void visit(Fields& fields, mivo::DynamicRangeConfig& record)
{
    fields.number(record.rangeMode, 0, 1);
    fields.number(record.bitDepth, 0, 12);
    const auto depths = mivo::bitDepths(record.rangeMode);
    fields.require(std::find(depths.begin(), depths.end(), record.bitDepth) != depths.end());
}

template <typename Fields>
void visit(Fields& fields, SAddOSCInfo& record)
{
    fields.flag(record.enabled);
    fields.number(record.port, 1, 65535);
}

template <typename Fields>
void visit(Fields& fields, SAddDMXInfo& record)
{
    fields.flag(record.enabled);
    fields.number(record.channelOffset, 0, 512);
    fields.number(record.subnet, 0, 15);
    fields.number(record.domain, 0, 15);
    fields.rest(record.nodeName);
}

} // namespace

template <typename Record>
bool readRecord(const QString& text, Record& record)
{
    Reader fields(text);
    visit(fields, record);
    return fields.isRecord();
}

template <typename Record>
QString writeRecord(const Record& record)
{
    Writer fields;
    Record copy = record; // visit() serves both ways
    visit(fields, copy);
    return fields.text();
}

template bool readRecord(const QString&, STPortInfo&);
template QString writeRecord(const STPortInfo&);
template bool readRecord(const QString&, STMivoTimedShutdownSettings&);
template QString writeRecord(const STMivoTimedShutdownSettings&);
template bool readRecord(const QString&, STMivoTimedAutomaticRestartSettings&);
template QString writeRecord(const STMivoTimedAutomaticRestartSettings&);
template bool readRecord(const QString&, mivo::DynamicRangeConfig&);
template QString writeRecord(const mivo::DynamicRangeConfig&);
template bool readRecord(const QString&, SAddOSCInfo&);
template QString writeRecord(const SAddOSCInfo&);
template bool readRecord(const QString&, SAddDMXInfo&);
template QString writeRecord(const SAddDMXInfo&);

} // namespace mivohost
