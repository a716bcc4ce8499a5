#include "cluster/showsetup.h"

#include "base/filerequests.h"
#include "cluster/showaddress.h"
#include "cluster/synchroniser.h"
#include "mivohostkit/settingsstore.h"

#include <mivoqutils/filetask.h>
#include <zrcutils/heldfile.h>
#include <zrcutils/nocachefile.h>

#include <QtCore/QCommandLineParser>
#include <QtCore/QFile>
#include <QtCore/QSysInfo>
#include <QtCore/QUuid>
#include <QtNetwork/QSslCertificate>

#include <utility>

namespace mivohost {

namespace {

constexpr std::size_t longestFile = 1 << 20;
constexpr const char* userVariable = "MIVO_STORE_USER";
constexpr const char* passwordVariable = "MIVO_STORE_PASSWORD";

/// A file that the operator named, and that may lie on a drive which is gone.
QByteArray readNamed(const QString& path, ShowSetup::Problem& problem)
{
    FileContent result{{}, QStringLiteral("no answer in time")};
    mivo::qutils::FileTask task;
    task.start([path] { return readFile(path, longestFile); },
               [&result](FileContent&& read) { result = std::move(read); });
    task.waitFor(std::chrono::seconds(10));
    if (!result.error.isEmpty()) {
        problem = {notRead, fileProblem(path, result.error)};
    }
    return QByteArray::fromStdString(result.bytes);
}

/// The machine's id, made when it is first asked for. A file that is there but of no use is left
/// alone: with another id the machine would be another one.
QString machineId(const QDir& data, ShowSetup::Problem& problem)
{
    QFile file(data.filePath(QStringLiteral("machine-id")));
    const auto fail = [&](const QString& reason) {
        problem = {storeFailed, fileProblem(file.fileName(), reason)};
        return QString();
    };
    zrcutils::tryWhileHeld(zrcutils::heldFor,
                           [&] { return file.open(QIODevice::ReadOnly) || !file.exists(); });
    if (file.isOpen()) {
        const QUuid id = QUuid::fromString(QString::fromUtf8(file.read(100)).trimmed());
        return id.isNull() ? fail(QStringLiteral("no id of a machine is in it"))
                           : id.toString(QUuid::WithoutBraces);
    }
    if (file.exists()) {
        return fail(file.errorString());
    }
    data.mkpath(QStringLiteral("."));
    const QString id = QUuid::createUuid().toString(QUuid::WithoutBraces);
    std::error_code code;
    return NoCacheFile::saveToFile(file.fileName().toStdString(), id.toStdString(), code)
               ? id
               : fail(qt_error_string(code.value()));
}

} // namespace

void ShowSetup::addOptions(QCommandLineParser& arguments)
{
    arguments.addOptions({
        {QStringLiteral("store-ca"),
         QStringLiteral("Trust these certificates (PEM) for etcds://; else those of the system."),
         QStringLiteral("file")},
        {QStringLiteral("store-login"),
         QStringLiteral("Sign in to etcd with the user on the first line of this file and the "
                        "password on the second; else as MIVO_STORE_USER and MIVO_STORE_PASSWORD "
                        "say."),
         QStringLiteral("file")},
        {QStringLiteral("machine-name"),
         QStringLiteral("What other machines of the show call this one; else the host's name."),
         QStringLiteral("name")},
        {QStringLiteral("adopt"),
         QStringLiteral("Give this machine what that one of the show has for itself, such as its "
                        "folders and devices, then end."),
         QStringLiteral("machine")},
        {QStringLiteral("forget"), QStringLiteral("Take that machine out of the show, then end."),
         QStringLiteral("machine")},
    });
}

std::optional<ShowSetup> ShowSetup::read(const QCommandLineParser& arguments, const QDir& data,
                                         Problem& problem)
{
    const QString user = qEnvironmentVariable(userVariable);
    const QString password = qEnvironmentVariable(passwordVariable);
    qunsetenv(userVariable); // programs that are started do not get them
    qunsetenv(passwordVariable);
    const QString store = arguments.value(QStringLiteral("store"));
    if (!ShowAddress::isOne(store)) {
        for (const char* option : {"store-ca", "store-login", "machine-name", "adopt", "forget"}) {
            if (arguments.isSet(QLatin1String(option))) {
                problem = {badArgument,
                           QStringLiteral("--%1: only with --store etcd://...").arg(option)};
            }
        }
        return std::nullopt;
    }
    const auto address = ShowAddress::parse(store);
    if (!address) {
        problem = {badArgument, QStringLiteral("--store takes a file, or "
                                               "etcd://HOST[:PORT][,HOST[:PORT]...]/SHOW")};
        return std::nullopt;
    }
    ShowSetup setup;
    setup.show = address->show;
    setup.servers.hosts = address->hosts;
    setup.servers.isEncrypted = address->isEncrypted;
    if (arguments.isSet(QStringLiteral("store-ca"))) {
        const QString path = arguments.value(QStringLiteral("store-ca"));
        setup.servers.authorities = readNamed(path, problem);
        if (problem.reason.isEmpty()
            && QSslCertificate::fromData(setup.servers.authorities).isEmpty()) {
            problem = {notRead, fileProblem(path, QStringLiteral("no certificate (PEM) is in it"))};
        }
    }
    setup.servers.user = user;
    setup.servers.password = password;
    if (arguments.isSet(QStringLiteral("store-login"))) {
        const QStringList lines =
            QString::fromUtf8(readNamed(arguments.value(QStringLiteral("store-login")), problem))
                .split('\n');
        setup.servers.user = lines.value(0).trimmed();
        setup.servers.password = lines.value(1).trimmed();
    }
    setup.adopted = arguments.value(QStringLiteral("adopt"));
    setup.forgotten = arguments.value(QStringLiteral("forget"));
    setup.name = arguments.isSet(QStringLiteral("machine-name"))
                     ? arguments.value(QStringLiteral("machine-name"))
                     : QSysInfo::machineHostName();
    if (problem.reason.isEmpty()) {
        setup.machine = machineId(data, problem);
    }
    return problem.reason.isEmpty() ? std::optional(setup) : std::nullopt;
}

QString ShowSetup::path(const QDir& data) const
{
    return data.filePath(QStringLiteral("shows/%1.sqlite").arg(show));
}

std::unique_ptr<SharedSettings> ShowSetup::share(std::unique_ptr<SqlitePersistence> local,
                                                 const QString& ownPath, QString& error) const
{
    bool isKept = local->keepOutbox();
    if (isKept && local->loadAll().isEmpty() && !ownPath.isEmpty()) {
        const auto own = SqlitePersistence::open(ownPath);
        if (!own.persistence) { // a start without the show says more, and puts it right
            error = fileProblem(ownPath, own.error);
            return nullptr;
        }
        const QVariantHash rows = own.persistence->loadAll();
        std::vector<SqlitePersistence::Update> updates;
        for (auto row = rows.begin(); row != rows.end(); ++row) {
            updates.push_back({row.key(), 0, row.value()});
        }
        isKept = local->update(updates);
    }
    if (!isKept) {
        error = local->lastError();
        return nullptr;
    }
    SharedSettings::Identity identity{Synchroniser::prefixOf(show), machine, name, {}, {}, {}};
    identity.notAdopted = {QStringLiteral("recentProjectFiles"), QStringLiteral("unsavedProject")};
    for (const auto& setting : SettingsStore().all()) {
        identity.known.insert(setting.name);
        if (setting.scope == SettingsStore::Scope::machine) {
            identity.own.insert(setting.name);
        }
    }
    return std::make_unique<SharedSettings>(std::move(local), std::move(identity));
}

} // namespace mivohost
