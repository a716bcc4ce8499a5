#pragma once

#include "mivohostkit/export.h"
#include "mivohostkit/settingsstore.h"

#include <QtCore/QDateTime>
#include <QtCore/QString>
#include <QtCore/QVariant>

#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace mivohost {

/// Settings that are taken along to another machine, as one JSON text (docs/settings-file.md).
///
/// Bindings of keys and devices are not among them, nor what the program notes for itself, as its
/// recent files.
class MIVOHOSTKIT_EXPORT SettingsFile
{
public:
    using Key = SettingsStore::Key;         ///< a setting
    using Section = SettingsStore::Section; ///< where it stands in the dialog
    using Scope = SettingsStore::Scope;     ///< the show's or the machine's own

    static constexpr std::size_t mostBytes = 8 * 1024 * 1024; ///< of a text that is read

    /// Who wrote it, and when.
    struct Origin
    {
        QString programVersion; ///< empty: not told
        QString machine;        ///< its name, empty: not told
        QDateTime date;         ///< UTC, invalid: not told
    };

    /// What importing a setting changes.
    struct Change
    {
        Key key;         ///< of the setting
        QString name;    ///< under which it is kept
        Section section; ///< of the setting
        Scope scope;     ///< of the setting
        QVariant before; ///< the store's value
        QVariant after;  ///< the file's value
    };

    /// Why a setting of a file cannot be taken.
    enum class Problem {
        unknown,    ///< perhaps a later version's
        notTaken,   ///< it stays with its machine
        wrongType,  ///< for example a text in place of a number
        outOfRange, ///< a number that is not from `lowest` to `highest`
        invalid     ///< a text or a record that the setting does not have
    };
    /// A setting of a file that cannot be taken.
    struct Refused
    {
        QString name;       ///< as the file has it
        Problem problem;    ///< why
        double lowest = 0;  ///< of the range, with outOfRange
        double highest = 0; ///< of the range, with outOfRange
    };

    /// What importing a file would do.
    struct Plan
    {
        std::vector<Change> changes;  ///< what differs, in the order of the file
        std::vector<Refused> refused; ///< all others are as they are in the store
    };

    /// Every section that has a setting to be taken along, in the order of a file.
    static std::vector<Section> sections();
    /// By which files and command lines name a section.
    static QString nameOf(Section section);
    /// By which files, command lines and stores name a setting.
    static QString nameOf(Key key);

    /// The settings of these sections as they are now, with this program as their origin. Runtime
    /// thread.
    static std::string write(const SettingsStore& store, const std::set<Section>& sections);

    /// A value as it stands in a file.
    static QString valueText(Key key, const QVariant& value);
    /// The fields of a setting that is a record, with their values as JSON has them; else empty.
    static std::vector<std::pair<QString, QVariant>> fieldsOf(Key key, const QVariant& value);

    /// Reads a text, whatever it holds. Any thread; no longer than a second, and a few times the
    /// text's memory.
    static SettingsFile read(const std::string& json);

    /// Why the text could not be read, else empty; then all below is empty.
    const QString& error() const { return m_error; }
    int errorLine() const { return m_errorLine; } ///< from 1; 0: the text as a whole
    /// As the file says, which may be anything.
    const Origin& origin() const { return m_origin; }

    /// What importing it into the store would change. Runtime thread.
    Plan plan(const SettingsStore& store) const;

private:
    class Handler;

    QString m_error;
    int m_errorLine = 0;
    Origin m_origin;
    std::vector<std::pair<QString, QVariant>> m_values; // objects and arrays as QByteArray
};

} // namespace mivohost
