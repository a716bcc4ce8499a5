#include "cluster/etcdmessages.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

#include <utility>

namespace mivohost::etcd {

namespace {

using Status = Answer::Status;

/// Fields of an answer. One that is missing has its default, as etcd leaves those out; one of
/// another type makes the answer invalid.
class Fields
{
public:
    Fields(const QJsonObject& object, bool& isValid) : m_object(object), m_isValid(isValid) {}

    /// 64 bits come as text.
    qint64 number(const char* name) const
    {
        const QJsonValue value = m_object.value(QLatin1String(name));
        if (value.isUndefined()) {
            return 0;
        }
        bool isNumber = false;
        const qint64 number = value.toVariant().toString().toLongLong(&isNumber);
        require(isNumber && (value.isString() || value.isDouble()));
        return number;
    }

    QByteArray bytes(const char* name) const
    {
        const auto decoded = QByteArray::fromBase64Encoding(
            text(name).toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
        require(decoded.decodingStatus == QByteArray::Base64DecodingStatus::Ok);
        return decoded.decoded;
    }

    QString text(const char* name) const { return field(name, QJsonValue::String).toString(); }
    bool flag(const char* name) const { return field(name, QJsonValue::Bool).toBool(); }
    QJsonObject object(const char* name) const
    {
        return field(name, QJsonValue::Object).toObject();
    }
    QJsonArray list(const char* name) const { return field(name, QJsonValue::Array).toArray(); }

private:
    QJsonValue field(const char* name, QJsonValue::Type type) const
    {
        QJsonValue value = m_object.value(QLatin1String(name));
        require(value.isUndefined() || value.type() == type);
        return value;
    }
    void require(bool isAsExpected) const { m_isValid = m_isValid && isAsExpected; }

    const QJsonObject& m_object;
    bool& m_isValid;
};

QJsonValue base64(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.toBase64());
}

QJsonValue int64(qint64 number)
{
    return QString::number(number);
}

KeyValue readValue(const QJsonObject& object, bool& isValid)
{
    const Fields fields(object, isValid);
    KeyValue read{fields.bytes("key"), fields.bytes("value"), fields.number("mod_revision")};
    isValid = isValid && !read.key.isEmpty() && read.revision > 0;
    return read;
}

void readValues(const QJsonArray& list, std::vector<KeyValue>& values, bool& isValid)
{
    for (const auto& value : list) {
        isValid = isValid && value.isObject();
        if (!isValid) {
            return; // a short text would become many values
        }
        values.push_back(readValue(value.toObject(), isValid));
    }
}

Status statusOf(int code, const QString& error)
{
    // Codes of gRPC, which the HTTP interface passes on.
    switch (code) {
    case 16: // unauthenticated
        return Status::signedOut;
    case 11: // out of range
        return error.contains(QLatin1String("compacted")) ? Status::compacted : Status::refused;
    case 3:  // invalid argument
    case 5:  // not found
    case 7:  // permission denied
    case 8:  // resource exhausted
    case 9:  // failed precondition
    case 12: // unimplemented
        return Status::refused;
    default:
        return Status::unreachable;
    }
}

template <typename Result>
Result garbage()
{
    Result result;
    result.status = Status::garbage;
    result.error = QStringLiteral("the answer is not one of etcd");
    return result;
}

/// What `object` says of an error, in either of the two forms.
template <typename Result>
Result failure(const QJsonObject& object, int codeWithout)
{
    const QJsonValue error = object.value(QLatin1String("error"));
    const QJsonObject inner = error.isObject() ? error.toObject() : object;
    Result result;
    const QString text = error.isString() ? error.toString() : inner.value("message").toString();
    const int code = inner.value(error.isObject() ? "grpc_code" : "code").toInt(codeWithout);
    result.error = text.left(longestText);
    result.status = statusOf(code, text);
    if (result.error.isEmpty()) {
        return garbage<Result>();
    }
    return result;
}

} // namespace

QByteArray endOf(QByteArray prefix)
{
    prefix.back() = static_cast<char>(prefix.back() + 1);
    return prefix;
}

Request range(const QByteArray& key, const QByteArray& end, int most, qint64 revision)
{
    return {"kv/range",
            {{"key", base64(key)},
             {"range_end", base64(end)},
             {"limit", int64(most)},
             {"revision", int64(revision)}}};
}

Request put(const QByteArray& key, const QByteArray& value, qint64 lease)
{
    return {"kv/put", {{"key", base64(key)}, {"value", base64(value)}, {"lease", int64(lease)}}};
}

Request remove(const QByteArray& key, const QByteArray& end)
{
    return {"kv/deleterange", {{"key", base64(key)}, {"range_end", base64(end)}}};
}

Request writeAll(const std::vector<Write>& writes)
{
    QJsonArray compare;
    QJsonArray success;
    QJsonArray failure;
    for (const Write& write : writes) {
        const QJsonValue key = base64(write.key);
        compare.append(QJsonObject{{"target", "MOD"},
                                   {"result", "EQUAL"},
                                   {"key", key},
                                   {"mod_revision", int64(write.revision)}});
        success.append(QJsonObject{
            {"request_put", QJsonObject{{"key", key}, {"value", base64(write.value)}}}});
        failure.append(QJsonObject{{"request_range", QJsonObject{{"key", key}}}});
    }
    return {"kv/txn", {{"compare", compare}, {"success", success}, {"failure", failure}}};
}

Request watch(const QByteArray& prefix, qint64 revision)
{
    return {"watch",
            {{"create_request", QJsonObject{{"key", base64(prefix)},
                                            {"range_end", base64(endOf(prefix))},
                                            {"start_revision", int64(revision)},
                                            {"fragment", true}}}}};
}

Request grantLease(int seconds)
{
    return {"lease/grant", {{"TTL", int64(seconds)}}};
}

Request keepLease(qint64 lease)
{
    return {"lease/keepalive", {{"ID", int64(lease)}}};
}

Request signIn(const QString& user, const QString& password)
{
    return {"auth/authenticate", {{"name", user}, {"password", password}}};
}

Answer readAnswer(int httpStatus, const QByteArray& body)
{
    const QJsonDocument document = QJsonDocument::fromJson(body);
    if (!document.isObject()) {
        return garbage<Answer>();
    }
    QJsonObject object = document.object();
    if (httpStatus != 200 || object.contains(QLatin1String("error"))) {
        return failure<Answer>(object, httpStatus == 401 ? 16 : 2);
    }
    if (object.value(QLatin1String("result")).isObject()) { // of what etcd takes for a stream
        object = object.value(QLatin1String("result")).toObject();
    }
    bool isValid = true;
    const Fields fields(object, isValid);
    const QJsonObject header = fields.object("header");
    Answer answer;
    answer.revision = Fields(header, isValid).number("revision");
    answer.isWritten = fields.flag("succeeded");
    answer.hasMore = fields.flag("more");
    answer.lease = fields.number("ID");
    answer.seconds = fields.number("TTL");
    answer.token = fields.text("token").toLatin1();
    readValues(fields.list("kvs"), answer.values, isValid);
    for (const auto& response : fields.list("responses")) {
        const QJsonObject part = response.toObject();
        const QJsonObject found = Fields(part, isValid).object("response_range");
        readValues(Fields(found, isValid).list("kvs"), answer.values, isValid);
    }
    return isValid && !header.isEmpty() && answer.revision >= 0 ? answer : garbage<Answer>();
}

Report readReport(const QByteArray& line)
{
    const QJsonDocument document = QJsonDocument::fromJson(line);
    if (!document.isObject()) {
        return garbage<Report>();
    }
    if (document.object().contains(QLatin1String("error"))) {
        return failure<Report>(document.object(), 2);
    }
    bool isValid = true;
    const QJsonObject whole = document.object();
    const QJsonObject object = Fields(whole, isValid).object("result");
    const Fields fields(object, isValid);
    const QJsonObject header = fields.object("header");
    Report report;
    report.revision = Fields(header, isValid).number("revision");
    report.isStart = fields.flag("created");
    report.isPart = fields.flag("fragment");
    for (const auto& item : fields.list("events")) {
        const QJsonObject event = item.toObject();
        const QJsonObject value = Fields(event, isValid).object("kv");
        report.values.push_back(readValue(value, isValid));
        report.values.back().isDeleted =
            Fields(event, isValid).text("type") == QLatin1String("DELETE");
        if (!isValid) {
            break;
        }
    }
    if (fields.flag("canceled")) {
        const bool isCompacted = fields.number("compact_revision") > 0;
        report.status = isCompacted ? Status::compacted : Status::unreachable;
        report.error = fields.text("cancel_reason").left(longestText);
    }
    return isValid && !header.isEmpty() && report.revision >= 0 ? report : garbage<Report>();
}

} // namespace mivohost::etcd
