#include "mivosettingswidgets/shortcutfile.h"

#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <QtCore/QDir>
#include <QtCore/QStandardPaths>

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace mivo::settings {

namespace {

constexpr const char* invalidDocument = "invalid json document!";
constexpr const char* invalidString = "not a valid string!";
constexpr const char* invalidQuotes = "not a valid quote string!";
constexpr const char* invalidComment = "not a comment!";
constexpr const char* invalidNumber = "not a valid number!";
constexpr const char* notIntegral = "not a valid signed integral like number.";
constexpr const char* notAnArray = "array must start with [.";
constexpr const char* invalidArray = "no valid array!";

constexpr int maxDepth = 64; // of values that are skipped; the parser recurses

/// Receives the parser's events, and knows which value must come next. `error` keeps the first
/// error.
class Handler
{
public:
    explicit Handler(std::vector<STShortCutItem>& items) : m_items(items) {}

    const char* error = nullptr;

    bool Null() { return other(); }
    bool Bool(bool /*value*/) { return other(); }
    bool Int(int value)
    {
        if (m_next == Next::type) {
            m_item.type = static_cast<EnumShortCutType>(value);
            return member(hasType);
        }
        return other();
    }
    bool Uint(unsigned value)
    {
        return value <= INT32_MAX ? Int(static_cast<int>(value)) : number();
    }
    bool Int64(std::int64_t /*value*/) { return number(); }
    bool Uint64(std::uint64_t /*value*/) { return number(); }
    bool Double(double /*value*/) { return number(); }
    bool RawNumber(const char* /*text*/, rapidjson::SizeType /*length*/, bool /*copy*/)
    {
        return number();
    }
    bool String(const char* text, rapidjson::SizeType length, bool /*copy*/)
    {
        if (m_next == Next::path) {
            m_item.path.assign(text, length);
            return member(hasPath);
        }
        if (m_next == Next::shortCutStr) {
            m_item.shortCutStr.assign(text, length);
            return member(hasShortCutStr);
        }
        return other();
    }
    bool Key(const char* text, rapidjson::SizeType length, bool /*copy*/)
    {
        const std::string_view name(text, length);
        if (m_skipped > 0) {
            return true;
        }
        if (m_next == Next::topMember) {
            m_next = name == "shortCutInfoList" ? Next::list : Next::topSkipped;
        } else if (name == "type") {
            m_next = Next::type;
        } else if (name == "path") {
            m_next = Next::path;
        } else if (name == "shortCutStr") {
            m_next = Next::shortCutStr;
        } else {
            m_next = Next::entrySkipped;
        }
        return true;
    }
    bool StartObject()
    {
        if (m_next == Next::document) {
            m_next = Next::topMember;
            return true;
        }
        if (m_next == Next::entry) {
            m_next = Next::entryMember;
            m_item = {};
            m_members = 0;
            return true;
        }
        return open();
    }
    bool EndObject(rapidjson::SizeType /*members*/)
    {
        if (m_skipped > 0) {
            return close();
        }
        if (m_next == Next::entryMember) {
            if (m_members != (hasType | hasPath | hasShortCutStr)) {
                return fail(invalidDocument);
            }
            m_items.push_back(std::move(m_item));
            m_next = Next::entry;
            return true;
        }
        return m_hasList || fail(invalidDocument);
    }
    bool StartArray()
    {
        if (m_next == Next::list) {
            m_items.clear(); // a member that comes twice: the last one holds
            m_hasList = true;
            m_next = Next::entry;
            return true;
        }
        return open();
    }
    bool EndArray(rapidjson::SizeType /*elements*/)
    {
        if (m_skipped > 0) {
            return close();
        }
        m_next = Next::topMember;
        return true;
    }

    /// The message for a value that is not what must come next.
    const char* expected() const
    {
        switch (m_skipped > 0 ? Next::topSkipped : m_next) {
        case Next::type:
            return invalidNumber;
        case Next::path:
        case Next::shortCutStr:
            return invalidString;
        case Next::list:
            return notAnArray;
        case Next::entry:
            return invalidArray;
        default:
            return invalidDocument;
        }
    }

private:
    enum class Next {
        document,
        topMember,
        topSkipped,
        list,
        entry,
        entryMember,
        entrySkipped,
        type,
        path,
        shortCutStr
    };
    enum Member : unsigned { hasType = 1, hasPath = 2, hasShortCutStr = 4 };

    bool fail(const char* message)
    {
        error = message;
        return false;
    }

    bool member(Member which)
    {
        m_members |= which;
        m_next = Next::entryMember;
        return true;
    }

    bool number() { return m_next == Next::type ? fail(notIntegral) : other(); }

    /// A value that is part of a skipped member, or else an error.
    bool other()
    {
        if (m_skipped > 0) {
            return true;
        }
        if (m_next == Next::topSkipped) {
            m_next = Next::topMember;
            return true;
        }
        if (m_next == Next::entrySkipped) {
            m_next = Next::entryMember;
            return true;
        }
        return fail(expected());
    }

    bool open()
    {
        if (m_skipped == 0 && m_next != Next::topSkipped && m_next != Next::entrySkipped) {
            return fail(expected());
        }
        return ++m_skipped <= maxDepth || fail(invalidDocument);
    }

    bool close()
    {
        if (--m_skipped == 0) {
            m_next = m_next == Next::topSkipped ? Next::topMember : Next::entryMember;
        }
        return true;
    }

    std::vector<STShortCutItem>& m_items;
    STShortCutItem m_item;
    Next m_next = Next::document;
    unsigned m_members = 0;
    int m_skipped = 0; // open arrays and objects of a value that is skipped
    bool m_hasList = false;
};

const char* messageFor(rapidjson::ParseErrorCode code, const Handler& handler)
{
    switch (code) {
    case rapidjson::kParseErrorTermination:
        return handler.error;
    case rapidjson::kParseErrorValueInvalid:
        return handler.expected();
    case rapidjson::kParseErrorArrayMissCommaOrSquareBracket:
        return invalidArray;
    case rapidjson::kParseErrorStringUnicodeEscapeInvalidHex:
    case rapidjson::kParseErrorStringUnicodeSurrogateInvalid:
    case rapidjson::kParseErrorStringEscapeInvalid:
    case rapidjson::kParseErrorStringMissQuotationMark:
    case rapidjson::kParseErrorStringInvalidEncoding:
        return invalidQuotes;
    case rapidjson::kParseErrorNumberTooBig:
    case rapidjson::kParseErrorNumberMissFraction:
    case rapidjson::kParseErrorNumberMissExponent:
        return invalidNumber;
    case rapidjson::kParseErrorUnspecificSyntaxError: // only comments end in it
        return invalidComment;
    default:
        return invalidDocument;
    }
}

std::string placeOf(std::string_view taken)
{
    const auto lines = std::count(taken.begin(), taken.end(), '\n');
    const auto lineEnd = taken.rfind('\n');
    const auto line = lineEnd == std::string_view::npos ? taken : taken.substr(lineEnd + 1);
    const auto columns = std::count_if(line.begin(), line.end(), [](char c) { return c != '\r'; });
    return "error at line :" + std::to_string(lines + 1) + " col :" + std::to_string(columns);
}

} // namespace

QString shortCutFilePath()
{
    const QString folder = QDir::cleanPath(QDir::toNativeSeparators(
        QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)));
    // No separator before "_Display"; kept on purpose.
    return QStringLiteral("%1_Display/shortcut.json").arg(folder);
}

std::vector<STShortCutItem> parseShortCuts(const std::string& json)
{
    std::vector<STShortCutItem> items;
    Handler handler(items);
    rapidjson::Reader reader;
    rapidjson::StringStream stream(json.c_str());
    const auto result = reader.Parse<rapidjson::kParseCommentsFlag>(stream, handler);
    if (result.IsError()) {
        throw std::runtime_error(placeOf(std::string_view(json).substr(0, result.Offset()))
                                 + " msg:" + messageFor(result.Code(), handler));
    }
    return items;
}

std::string formatShortCuts(const std::vector<STShortCutItem>& items)
{
    rapidjson::StringBuffer buffer(nullptr, 1024);
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    const auto write = [&writer](const std::string& text) {
        writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
    };
    writer.StartObject();
    writer.Key("shortCutInfoList");
    writer.StartArray();
    for (const STShortCutItem& item : items) {
        writer.StartObject();
        writer.Key("type");
        writer.Int(item.type);
        writer.Key("path");
        write(item.path);
        writer.Key("shortCutStr");
        write(item.shortCutStr);
        writer.EndObject();
    }
    writer.EndArray();
    writer.EndObject();
    return {buffer.GetString(), buffer.GetSize()};
}

} // namespace mivo::settings
