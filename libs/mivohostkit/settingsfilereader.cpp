#include "mivohostkit/settingsfile_p.h"

#include <rapidjson/encodedstream.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <string_view>

namespace mivohost {

namespace {

constexpr int mostDepth = 16;
constexpr std::size_t mostValues = 1000;
constexpr rapidjson::SizeType longestName = 100;
constexpr int longestOrigin = 100;

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
    rapidjson::StringBuffer m_buffer;
    rapidjson::Writer<rapidjson::StringBuffer> m_writer{m_buffer};
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

} // namespace mivohost
