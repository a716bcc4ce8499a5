#include "mivohostkit/settingsfile.h"

#include "mivohostkit/settingstable.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QSysInfo>

#include <rapidjson/encodedstream.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>

namespace mivohost {

namespace {

using Key = SettingsFile::Key;
using Problem = SettingsFile::Problem;
using Section = SettingsFile::Section;
using Buffer = rapidjson::StringBuffer;

constexpr const char* schemaName = "mivo-settings";
constexpr int formatVersion = 1;

constexpr int mostDepth = 16;
constexpr std::size_t mostValues = 1000;
constexpr rapidjson::SizeType longestName = 100;
constexpr int longestText = 4096; // characters; of a setting that is one text
constexpr int longestOrigin = 100;

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

/// Takes the parser's events. What stands within a setting is written again as it came.
class SettingsFile::Handler
{
public:
    explicit Handler(SettingsFile& file) : m_file(file) {}

    const char* error = "not a settings file";

    bool Null() { return isWithinValue() ? m_writer.Null() : value({}); }
    bool Bool(bool b) { return isWithinValue() ? m_writer.Bool(b) : value(b); }
    // Numbers come as text: the parser's own exact reading is undefined for some zeros.
    bool Int(int /*i*/) { return false; }
    bool Uint(unsigned /*i*/) { return false; }
    bool Int64(std::int64_t /*i*/) { return false; }
    bool Uint64(std::uint64_t /*i*/) { return false; }
    bool Double(double /*d*/) { return false; }
    bool RawNumber(const char* text, rapidjson::SizeType length, bool /*copy*/)
    {
        if (isWithinValue()) {
            return m_writer.RawValue(text, length, rapidjson::kNumberType);
        }
        const QByteArray number(text, static_cast<int>(length));
        bool isNumber = false;
        const qlonglong integer = number.toLongLong(&isNumber);
        if (isNumber) {
            return value(integer);
        }
        const double real = number.toDouble(&isNumber);
        return isNumber && value(real);
    }
    bool String(const char* text, rapidjson::SizeType length, bool /*copy*/)
    {
        if (isWithinValue()) {
            return m_writer.String(text, length);
        }
        return value(QString::fromUtf8(text, static_cast<int>(length)));
    }
    bool Key(const char* text, rapidjson::SizeType length, bool /*copy*/)
    {
        if (isWithinValue()) {
            return m_writer.Key(text, length);
        }
        m_name = QString::fromUtf8(text, static_cast<int>(std::min(length, longestName)));
        if (m_depth == 1) {
            return true;
        }
        const auto& values = m_file.m_values;
        if (length > longestName || values.size() == mostValues) {
            return fail("too many settings, or the name of one is too long");
        }
        return std::none_of(values.begin(), values.end(),
                            [this](const auto& other) { return other.first == m_name; })
               || fail("a setting is there twice");
    }
    bool StartObject()
    {
        const bool isSettings = m_depth == 1 && !isWithinValue() && m_name == "settings";
        if (m_depth == 0 || isSettings) {
            m_found |= isSettings ? settings : 0U;
            ++m_depth;
            return true;
        }
        return open() && m_writer.StartObject();
    }
    bool EndObject(rapidjson::SizeType members)
    {
        if (isWithinValue()) {
            return m_writer.EndObject(members) && close();
        }
        return m_depth-- == 2 || m_found == (schema | version | settings);
    }
    bool StartArray() { return m_depth > 0 && open() && m_writer.StartArray(); }
    bool EndArray(rapidjson::SizeType elements) { return m_writer.EndArray(elements) && close(); }

private:
    bool isWithinValue() const { return m_valueDepth > 0; }

    bool fail(const char* message)
    {
        error = message;
        return false;
    }

    bool open() { return ++m_valueDepth + m_depth <= mostDepth || fail("too deeply nested"); }

    /// The end of an object or array.
    bool close()
    {
        if (--m_valueDepth > 0) {
            return true;
        }
        const QByteArray json(m_buffer.GetString(), static_cast<int>(m_buffer.GetSize()));
        m_buffer.Clear();
        m_writer.Reset(m_buffer);
        return take(json);
    }

    bool value(const QVariant& scalar) { return m_depth > 0 && take(scalar); }

    bool take(const QVariant& value)
    {
        if (m_depth == 2) {
            m_file.m_values.emplace_back(m_name, value);
            return true;
        }
        const QString text = value.toString().left(longestOrigin).simplified();
        Origin& origin = m_file.m_origin;
        if (m_name == "schema") {
            m_found |= schema;
            return value == QVariant(QLatin1String(schemaName));
        }
        if (m_name == "version") {
            m_found |= version;
            return value == QVariant(qlonglong(formatVersion))
                   || (value.toLongLong() > formatVersion && fail("written by a later version"));
        }
        if (m_name == "programVersion") {
            origin.programVersion = text;
        } else if (m_name == "machine") {
            origin.machine = text;
        } else if (m_name == "date") {
            origin.date = QDateTime::fromString(text, Qt::ISODate);
        }
        return m_name != "settings"; // which is an object
    }

    enum Member : unsigned { schema = 1, version = 2, settings = 4 };

    SettingsFile& m_file;
    QString m_name;       // of the last member
    int m_depth = 0;      // 1 in the file's object, 2 in that of the settings
    int m_valueDepth = 0; // open objects and arrays of a value
    unsigned m_found = 0; // of Member
    Buffer m_buffer;
    rapidjson::Writer<Buffer> m_writer{m_buffer};
};

SettingsFile SettingsFile::read(const std::string& json)
{
    SettingsFile file;
    if (json.size() > mostBytes) {
        file.m_error = QStringLiteral("the file is too large");
        return file;
    }
    Handler handler(file);
    rapidjson::MemoryStream bytes(json.data(), json.size());
    rapidjson::EncodedInputStream<rapidjson::UTF8<>, rapidjson::MemoryStream> stream(bytes);
    rapidjson::Reader reader;
    constexpr unsigned flags = rapidjson::kParseIterativeFlag
                               | rapidjson::kParseNumbersAsStringsFlag
                               | rapidjson::kParseValidateEncodingFlag;
    const auto result = reader.Parse<flags>(stream, handler);
    if (result.IsError()) {
        const bool isSyntax = result.Code() != rapidjson::kParseErrorTermination;
        const std::string_view taken = std::string_view(json).substr(0, result.Offset());
        file = {};
        file.m_error = QLatin1String(isSyntax ? "not a settings file" : handler.error);
        file.m_errorLine = static_cast<int>(std::count(taken.begin(), taken.end(), '\n')) + 1;
    }
    return file;
}

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
