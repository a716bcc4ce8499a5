#include "mivohostkit/settingsfile_p.h"
#include "mivohostkit/settingstable.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QSysInfo>

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <algorithm>
#include <iterator>
#include <optional>

namespace mivohost {

namespace {

using Key = SettingsFile::Key;
using Problem = SettingsFile::Problem;
using Section = SettingsFile::Section;
using Buffer = rapidjson::StringBuffer;

constexpr int longestText = 4096; // characters; of a setting that is one text

/// In the order of a file.
constexpr std::pair<Section, const char*> sectionNames[]{
    {Section::general, "general"},
    {Section::project, "project"},
    {Section::fileInfo, "fileInfo"},
    {Section::undo, "undo"},
    {Section::online, "online"},
    {Section::playControl, "playControl"},
    {Section::presentation, "presentation"},
    {Section::stage, "stage"},
    {Section::display, "display"},
    {Section::codec, "codec"},
    {Section::audio, "audio"},
    {Section::network, "network"},
    {Section::host, "host"},
};

bool isTaken(Key key)
{
    return key != Key::midiBindings && key != Key::dmxBindings // the shortcut file takes these
           && key != Key::recentProjectFiles && key != Key::unsavedProject;
}

bool isPlain(const QString& text)
{
    return text.size() <= longestText && std::all_of(text.begin(), text.end(), [](QChar c) {
               return c.category() != QChar::Other_Control;
           });
}

template <typename Writer>
bool writeText(Writer& writer, const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    return writer.String(utf8.constData(), static_cast<rapidjson::SizeType>(utf8.size()));
}

template <typename Writer>
bool writeScalar(Writer& writer, const QVariant& value)
{
    switch (value.userType()) {
    case QMetaType::Bool:
        return writer.Bool(value.toBool());
    case QMetaType::Int:
        return writer.Int(value.toInt());
    case QMetaType::Double:
        return writer.Double(value.toDouble());
    default:
        return writeText(writer, value.toString());
    }
}

template <typename Writer>
void writeValue(Writer& writer, Key key, const QVariant& value)
{
    const auto fields = SettingsFile::fieldsOf(key, value);
    if (!fields.empty()) {
        writer.StartObject();
        for (const auto& [name, field] : fields) {
            writer.Key(name.toLatin1().constData());
            writeScalar(writer, field);
        }
        writer.EndObject();
    } else if (key == Key::soundCardMappings && !value.toString().isEmpty()) {
        const QByteArray json = value.toString().toUtf8();
        writer.RawValue(json.constData(), static_cast<std::size_t>(json.size()),
                        rapidjson::kObjectType);
    } else {
        writeScalar(writer, value);
    }
}

/// The text under which a record is kept; null where `json` is none.
QString recordText(const std::vector<RecordField>& fields, const QByteArray& json)
{
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    if (static_cast<std::size_t>(object.size()) != fields.size()) {
        return {};
    }
    QStringList parts;
    for (const RecordField& field : fields) {
        const QJsonValue value = object[QLatin1String(field.name)];
        if (field.kind == RecordField::flag && value.isBool()) {
            parts += QString::number(value.toBool() ? 1 : 0);
        } else if (field.kind == RecordField::number && value.isDouble()) {
            parts += QString::number(value.toInt(-1)); // which no field takes
        } else if (field.kind == RecordField::text && value.isString()) {
            parts += value.toString();
        } else {
            return {};
        }
    }
    return parts.join(QLatin1Char('|'));
}

/// `raw` as it stands in a file, as a value of the setting, or why it is none.
std::optional<QVariant> valueOf(const Setting& setting, const QVariant& raw, Problem& problem)
{
    const int type = raw.userType();
    const int wanted = setting.fallback.userType();
    problem = Problem::wrongType;
    if (wanted == QMetaType::Bool) {
        return type == QMetaType::Bool ? setting.accept(raw.toInt()) : std::nullopt;
    }
    if (wanted != QMetaType::QString) {
        if (type != QMetaType::LongLong && !(type == QMetaType::Double && wanted == type)) {
            return std::nullopt;
        }
        problem = Problem::outOfRange;
        return setting.accept(raw);
    }
    const bool isStructure = type == QMetaType::QByteArray;
    QString text = raw.toString();
    if (!setting.fields.empty()) {
        text = isStructure ? recordText(setting.fields, raw.toByteArray()) : QString();
        if (text.isNull()) {
            return std::nullopt;
        }
    } else if (setting.key == Key::soundCardMappings && isStructure) {
        problem = Problem::invalid;
        return setting.accept(text); // also a long one
    } else if (type != QMetaType::QString) {
        return std::nullopt;
    }
    problem = Problem::invalid;
    return isPlain(text) ? setting.accept(text) : std::nullopt;
}

} // namespace

SettingsFile::Plan SettingsFile::plan(const SettingsStore& store) const
{
    std::map<QString, QVariant> held;
    for (const SettingsStore::Entry& entry : store.all()) {
        held[entry.name] = entry.value;
    }
    const QStringList unusable = store.unusable();
    Plan plan;
    for (const auto& [name, raw] : m_values) {
        const Setting* setting = settingNamed(name);
        if (setting == nullptr) {
            plan.refused.push_back({name, Problem::unknown});
            continue;
        }
        if (!isTaken(setting->key)) {
            plan.refused.push_back({name, Problem::notTaken});
            continue;
        }
        Problem problem = Problem::unknown;
        const auto value = valueOf(*setting, raw, problem);
        if (!value) {
            plan.refused.push_back({name, problem, setting->lowest, setting->highest});
        } else if (*value != held[name] || unusable.contains(name)) {
            plan.changes.push_back(
                {setting->key, name, setting->section, setting->scope, held[name], *value});
        }
    }
    return plan;
}

std::vector<Section> SettingsFile::sections()
{
    std::vector<Section> sections;
    for (const auto& each : sectionNames) {
        sections.push_back(each.first);
    }
    return sections;
}

QString SettingsFile::nameOf(Section section)
{
    const auto found = std::find_if(std::begin(sectionNames), std::end(sectionNames),
                                    [section](const auto& each) { return each.first == section; });
    return QString::fromLatin1(found->second);
}

QString SettingsFile::nameOf(SettingsStore::Key key)
{
    return QString::fromLatin1(settingOf(key).name);
}

std::vector<std::pair<QString, QVariant>> SettingsFile::fieldsOf(Key key, const QVariant& value)
{
    const auto& fields = settingOf(key).fields;
    const QString text = value.toString();
    std::vector<std::pair<QString, QVariant>> found;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const int place = static_cast<int>(i);
        const bool isLast = i + 1 == fields.size();
        const QString part = text.section(QLatin1Char('|'), place, isLast ? -1 : place);
        QVariant field = part;
        if (fields[i].kind == RecordField::flag) {
            field = part == QLatin1String("1");
        } else if (fields[i].kind == RecordField::number) {
            field = part.toInt();
        }
        found.emplace_back(QString::fromLatin1(fields[i].name), field);
    }
    return found;
}

QString SettingsFile::valueText(Key key, const QVariant& value)
{
    Buffer buffer;
    rapidjson::Writer<Buffer> writer(buffer);
    writeValue(writer, key, value);
    return QString::fromUtf8(buffer.GetString());
}

std::string SettingsFile::write(const SettingsStore& store, const std::set<Section>& sections)
{
    const auto entries = store.all(); // in the order of the table
    Buffer buffer;
    rapidjson::PrettyWriter<Buffer> writer(buffer);
    writer.StartObject();
    writer.Key("schema");
    writer.String(schemaName);
    writer.Key("version");
    writer.Int(formatVersion);
    const std::pair<const char*, QString> origin[]{
        {"programVersion", QCoreApplication::applicationVersion()},
        {"machine", QSysInfo::machineHostName()},
        {"date", QDateTime::currentDateTimeUtc().toString(Qt::ISODate)}};
    for (const auto& [name, text] : origin) {
        writer.Key(name);
        writeText(writer, text);
    }
    writer.Key("settings");
    writer.StartObject();
    for (const Section section : SettingsFile::sections()) {
        for (std::size_t i = 0; i < entries.size(); ++i) {
            const Setting& setting = settingsTable()[i];
            if (setting.section == section && sections.count(section) != 0
                && isTaken(setting.key)) {
                writer.Key(setting.name);
                writeValue(writer, setting.key, entries[i].value);
            }
        }
    }
    writer.EndObject();
    writer.EndObject();
    return {buffer.GetString(), buffer.GetSize()};
}

} // namespace mivohost
