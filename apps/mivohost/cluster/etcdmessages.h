#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QJsonObject>
#include <QtCore/QString>

#include <vector>

/// What is sent to the HTTP/JSON interface of etcd, and what comes back. Any thread.
namespace mivohost::etcd {

constexpr int longestAnswer = 64 << 20; ///< bytes of an answer, which others would fill at will
constexpr int longestLine = 8 << 20;    ///< bytes of one report of a watch
constexpr int longestText = 500;        ///< characters that are taken of a server's error

struct Request
{
    const char* path = ""; ///< below "/v3/"
    QJsonObject body;
};

struct KeyValue
{
    QByteArray key;
    QByteArray value;
    qint64 revision = 0; ///< the store's revision at which the key was changed last
    bool isDeleted = false;
};

/// A value that a key is to get, provided that nobody has changed it since that revision; 0: that
/// there is no such key.
struct Write
{
    QByteArray key;
    QByteArray value;
    qint64 revision = 0;
};

/// The first key behind all that begin with `prefix`, whose last character is not 0xff.
QByteArray endOf(QByteArray prefix);

/// At most `most` keys from `key` on, below `end`, as they were at `revision`; 0: as they are.
Request range(const QByteArray& key, const QByteArray& end, int most, qint64 revision);
/// `lease`: the key goes with it; 0: it stays.
Request put(const QByteArray& key, const QByteArray& value, qint64 lease = 0);
Request remove(const QByteArray& key, const QByteArray& end);
/// All of them or none; where none, the answer holds the keys as they are.
Request writeAll(const std::vector<Write>& writes);
/// What changes below `prefix` from `revision` on.
Request watch(const QByteArray& prefix, qint64 revision);
Request grantLease(int seconds);
Request keepLease(qint64 lease);
Request signIn(const QString& user, const QString& password);

struct Answer
{
    enum class Status {
        ok,
        unreachable, ///< another server may answer
        garbage,     ///< not what etcd answers
        tooLong,     ///< longer than longestAnswer
        signedOut,   ///< the token of the session is not known any more
        compacted,   ///< so old revisions are not kept
        refused      ///< and `error` says why
    };

    Status status = Status::ok;
    QString error; ///< for a person to read; empty when ok
    qint64 revision = 0;
    bool isWritten = false; ///< of writeAll()
    bool hasMore = false;   ///< of range()
    std::vector<KeyValue> values;
    qint64 lease = 0;
    qint64 seconds = 0; ///< for which the lease holds; 0 for one that has run out
    QByteArray token;   ///< of signIn()
};

/// Whatever the server sends is an answer; what etcd would not send is one with an error.
Answer readAnswer(int httpStatus, const QByteArray& body);

/// A line of a watch.
struct Report
{
    Answer::Status status = Answer::Status::ok;
    QString error;
    bool isStart = false; ///< the watch has begun
    bool isPart = false;  ///< more of the same revision follows
    qint64 revision = 0;  ///< of the whole store
    std::vector<KeyValue> values;
};
Report readReport(const QByteArray& line);

} // namespace mivohost::etcd
