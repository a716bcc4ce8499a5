#include "surface/settingscommand.h"

#include "base/filerequests.h"
#include "base/hosttext.h"
#include "mivohostkit/hostlog.h"
#include "mivohostkit/runtimethread.h"
#include "mivohostkit/settingsfile.h"
#include "surface/settingstexts.h"

#include <QtCore/QCommandLineParser>

#include <cstdio>
#include <set>

namespace mivohost {

namespace {

using Section = SettingsFile::Section;

const QString printOption = QStringLiteral("print-settings");
const QString exportOption = QStringLiteral("export");
const QString importOption = QStringLiteral("import");
const QString dryRunOption = QStringLiteral("dry-run");
const QString sectionsOption = QStringLiteral("sections");
const QString machineOption = QStringLiteral("with-machine-settings");

QStringList sectionNames()
{
    QStringList names;
    for (const Section section : SettingsFile::sections()) {
        names.append(SettingsFile::nameOf(section));
    }
    return names;
}

/// Those of the option, or all without it.
std::set<Section> sectionsOf(const QCommandLineParser& arguments)
{
    const QStringList wanted = arguments.value(sectionsOption).split(',');
    std::set<Section> sections;
    for (const Section section : SettingsFile::sections()) {
        if (!arguments.isSet(sectionsOption) || wanted.contains(SettingsFile::nameOf(section))) {
            sections.insert(section);
        }
    }
    return sections;
}

void say(std::FILE* stream, const QString& line)
{
    std::fprintf(stream, "%s\n", line.toUtf8().constData());
}

ExitCode fail(ExitCode code, const QString& message)
{
    say(stderr, QStringLiteral("mivohost: ") + message);
    return code;
}

ExitCode exportSettings(const QCommandLineParser& arguments, RuntimeThread& runtime,
                        SettingsStore& store)
{
    const QString path = arguments.value(exportOption);
    const QString error = saveFile(
        path, runtime.call([&] { return SettingsFile::write(store, sectionsOf(arguments)); }));
    return error.isEmpty()
               ? finished
               : fail(notWritten,
                      hostText("SettingsNotExported").arg(reasonText(fileProblem(path, error))));
}

ExitCode importSettings(const QCommandLineParser& arguments, RuntimeThread& runtime,
                        SettingsStore& store)
{
    const FileContent content = readFile(arguments.value(importOption), SettingsFile::mostBytes);
    const SettingsFile file = SettingsFile::read(content.bytes);
    if (!content.error.isEmpty() || !file.error().isEmpty()) {
        return fail(notRead, hostText("SettingsNotImported")
                                 .arg(content.error.isEmpty() ? problemText(file)
                                                              : reasonText(content.error)));
    }
    const SettingsFile::Plan plan = runtime.call([&] { return file.plan(store); });
    const std::set<Section> sections = sectionsOf(arguments);
    std::map<SettingsFile::Key, QVariant> chosen;
    for (const SettingsFile::Change& change : plan.changes) {
        if (sections.count(change.section) == 0) {
            continue;
        }
        const bool isTaken =
            change.scope == SettingsFile::Scope::show || arguments.isSet(machineOption);
        if (isTaken) {
            chosen[change.key] = change.after;
        }
        say(stdout, QStringLiteral("%1%2: %3 -> %4")
                        .arg(isTaken ? QString() : QStringLiteral("left: "), change.name,
                             SettingsFile::valueText(change.key, change.before),
                             SettingsFile::valueText(change.key, change.after)));
    }
    for (const SettingsFile::Refused& refused : plan.refused) {
        say(stderr,
            QStringLiteral("not taken: %1: %2").arg(printable(refused.name), refusedText(refused)));
    }
    if (!arguments.isSet(dryRunOption)) {
        const QString problem = runtime.call([&] { return store.setAll(chosen); });
        if (!problem.isEmpty()) {
            return fail(storeFailed, hostText("SettingsNotImported").arg(reasonText(problem)));
        }
    }
    return plan.refused.empty() ? finished : notAllTaken;
}

} // namespace

void addSettingsOptions(QCommandLineParser& arguments)
{
    const QString file = QStringLiteral("file");
    arguments.addOptions({
        {printOption, QStringLiteral("Print all settings, then end.")},
        {exportOption, QStringLiteral("Write the settings into this file, then end."), file},
        {importOption,
         QStringLiteral("Take over the settings of this file, all or none, but for this machine's "
                        "own; print what changes and what is not taken, then end."),
         file},
        {dryRunOption, QStringLiteral("With --import: print, and change nothing.")},
        {sectionsOption,
         QStringLiteral("With --export and --import: of these sections alone. They are %1.")
             .arg(sectionNames().join(QStringLiteral(", "))),
         QStringLiteral("names,...")},
        {machineOption,
         QStringLiteral("With --import: also this machine's own settings, such as folders, ports, "
                        "start-up and devices.")},
    });
}

SettingsCommand::SettingsCommand(const QCommandLineParser& arguments)
{
    const bool exports = arguments.isSet(exportOption);
    const bool imports = arguments.isSet(importOption);
    isGiven = exports || imports || arguments.isSet(printOption);
    changesSettings = imports && !arguments.isSet(dryRunOption);
    QStringList unknown = arguments.value(sectionsOption).split(',', Qt::SkipEmptyParts);
    for (const QString& name : sectionNames()) {
        unknown.removeAll(name);
    }
    if (!imports && (arguments.isSet(dryRunOption) || arguments.isSet(machineOption))) {
        problem = QStringLiteral("--dry-run and --with-machine-settings go with --import");
    } else if (!imports && !exports && arguments.isSet(sectionsOption)) {
        problem = QStringLiteral("--sections goes with --export and --import");
    } else if (!unknown.isEmpty()) {
        problem = QStringLiteral("no section is called %1").arg(unknown.first());
    } else if (sectionsOf(arguments).empty()) {
        problem = QStringLiteral("--sections names no section");
    }
}

ExitCode runSettingsCommand(const QCommandLineParser& arguments, RuntimeThread& runtime,
                            SettingsStore& store)
{
    if (arguments.isSet(exportOption)) {
        return exportSettings(arguments, runtime, store);
    }
    if (arguments.isSet(importOption)) {
        return importSettings(arguments, runtime, store);
    }
    for (const auto& setting : runtime.call([&store] { return store.all(); })) {
        say(stdout, setting.name + '=' + setting.value.toString());
    }
    return finished;
}

} // namespace mivohost
