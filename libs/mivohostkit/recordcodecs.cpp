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

    void flag(const char* name, bool& field) { number(name, field, 0, 1); }
    template <typename Number>
    void number(const char* /*name*/, Number& field, int lowest, int highest)
    {
        bool isNumber = false;
        const int value = next().toInt(&isNumber);
        require(isNumber && value >= lowest && value <= highest);
        field = static_cast<Number>(value);
    }
    void timeOfDay(const char* /*name*/, std::string& field)
    {
        const QString text = next();
        require(QLocale::c().toTime(text, QStringLiteral("hh:mm:ss")).isValid());
        field = text.toStdString();
    }
    /// The last field, which may contain separators.
    void rest(const char* /*name*/, std::string& field)
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
    void flag(const char* name, bool field) { number(name, field, 0, 1); }
    template <typename Number>
    void number(const char* /*name*/, Number field, int /*lowest*/, int /*highest*/)
    {
        m_fields += QString::number(field);
    }
    void timeOfDay(const char* name, const std::string& field) { rest(name, field); }
    void rest(const char* /*name*/, const std::string& field)
    {
        m_fields += QString::fromStdString(field);
    }
    void require(bool /*condition*/) {}

    QString text() const { return m_fields.join('|'); }

private:
    QStringList m_fields;
};

class Names
{
public:
    void flag(const char* name, bool /*field*/) { fields.push_back({name, RecordField::flag}); }
    template <typename Number>
    void number(const char* name, Number /*field*/, int /*lowest*/, int /*highest*/)
    {
        fields.push_back({name, RecordField::number});
    }
    void timeOfDay(const char* name, const std::string& field) { rest(name, field); }
    void rest(const char* name, const std::string& /*field*/)
    {
        fields.push_back({name, RecordField::text});
    }
    void require(bool /*condition*/) {}

    std::vector<RecordField> fields;
};

// The fields of each record in the order in which they are kept, for the classes above.

template <typename Fields>
void visit(Fields& fields, STPortInfo& record)
{
    fields.flag("open", record.open);
    fields.number("port", record.port, 0, 65534);
}

template <typename Fields>
void visit(Fields& fields, STMivoTimedShutdownSettings& record)
{
    fields.flag("enabled", record.enabled);
    fields.number("weekDayIndex", record.weekDayIndex, 0, 7);
    fields.timeOfDay("time", record.time);
}

template <typename Fields>
void visit(Fields& fields, STMivoTimedAutomaticRestartSettings& record)
{
    fields.flag("enabled", record.enabled);
    fields.number("monthIndex", record.monthIndex, 0, 12);
    fields.number("dayIndex", record.dayIndex, 0, 31);
    fields.timeOfDay("time", record.time);
}

template <typename Fields>
void visit(Fields& fields, mivo::DynamicRangeConfig& record)
{
    fields.number("rangeMode", record.rangeMode, 0, 1);
    fields.number("bitDepth", record.bitDepth, 0, 12);
    const auto depths = mivo::bitDepths(record.rangeMode);
    fields.require(std::find(depths.begin(), depths.end(), record.bitDepth) != depths.end());
}

template <typename Fields>
void visit(Fields& fields, SAddOSCInfo& record)
{
    fields.flag("enabled", record.enabled);
    fields.number("port", record.port, 1, 65535);
}

template <typename Fields>
void visit(Fields& fields, SAddDMXInfo& record)
{
    fields.flag("enabled", record.enabled);
    fields.number("channelOffset", record.channelOffset, 0, 512);
    fields.number("subnet", record.subnet, 0, 15);
    fields.number("domain", record.domain, 0, 15);
    fields.rest("nodeName", record.nodeName);
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

template <typename Record>
std::vector<RecordField> recordFields()
{
    Names names;
    Record record;
    visit(names, record);
    return names.fields;
}

template bool readRecord(const QString&, STPortInfo&);
template QString writeRecord(const STPortInfo&);
template std::vector<RecordField> recordFields<STPortInfo>();
template bool readRecord(const QString&, STMivoTimedShutdownSettings&);
template QString writeRecord(const STMivoTimedShutdownSettings&);
template std::vector<RecordField> recordFields<STMivoTimedShutdownSettings>();
template bool readRecord(const QString&, STMivoTimedAutomaticRestartSettings&);
template QString writeRecord(const STMivoTimedAutomaticRestartSettings&);
template std::vector<RecordField> recordFields<STMivoTimedAutomaticRestartSettings>();
template bool readRecord(const QString&, mivo::DynamicRangeConfig&);
template QString writeRecord(const mivo::DynamicRangeConfig&);
template std::vector<RecordField> recordFields<mivo::DynamicRangeConfig>();
template bool readRecord(const QString&, SAddOSCInfo&);
template QString writeRecord(const SAddOSCInfo&);
template std::vector<RecordField> recordFields<SAddOSCInfo>();
template bool readRecord(const QString&, SAddDMXInfo&);
template QString writeRecord(const SAddDMXInfo&);
template std::vector<RecordField> recordFields<SAddDMXInfo>();

} // namespace mivohost
