#pragma once

#include "mivohostapi/signals.h"

#include <QtCore/qglobal.h>
#include <QtCore/QMetaType>
#include <QtCore/QString>

#include <memory>
#include <vector>

namespace mivo::mediadispatch {

/// Which program plays when a project is opened.
struct STDefaultPlayProgramInfo
{
    bool lastTime = true;  ///< the one that was played last; the rest has no meaning then
    qint64 programId = -1; ///< a program of the project
    QString programName;   ///< as it was when it was chosen, for a program that is gone

    /// Equal where both stand for the program that was played last, or for the same program.
    friend bool operator==(const STDefaultPlayProgramInfo& a, const STDefaultPlayProgramInfo& b)
    {
        return a.lastTime == b.lastTime
               && (a.lastTime || (a.programId == b.programId && a.programName == b.programName));
    }
    /// The opposite.
    friend bool operator!=(const STDefaultPlayProgramInfo& a, const STDefaultPlayProgramInfo& b)
    {
        return !(a == b);
    }
};

/// A program of the open project. Its id stays the same for as long as it exists.
class IProgram
{
public:
    virtual ~IProgram() = default;
    virtual qint64 id() const = 0;    ///< that no other program of the project has
    virtual QString name() const = 0; ///< as it is shown
};

/// A group of programs, which stand in the order in which they are to be shown.
class IProgramGroup
{
public:
    virtual ~IProgramGroup() = default;
    virtual QString name() const = 0; ///< as it is shown
    /// Its programs; one that ends meanwhile is passed over.
    virtual std::vector<std::weak_ptr<IProgram>> programs() const = 0;
};

/// The programs of the open project, and its saving. The host implements it; all operations are
/// called on the runtime thread, where the signals are emitted too.
class IProgramDispatch
{
public:
    virtual ~IProgramDispatch() = default;

    /// False while no project is open.
    virtual bool isUsable() const = 0;

    /// Saves the open project, or begins to: it must not wait for the file. `flags` says which of
    /// its parts; pages pass 0x1000, which is all.
    virtual void saveProjectFile(int flags) = 0;

    /// The groups of the open project, in the order in which they are shown.
    virtual std::vector<std::weak_ptr<IProgramGroup>> programGroups() const = 0;

    /// @{
    /// What plays when the project is opened.
    virtual STDefaultPlayProgramInfo getDefaultPlayProgram() const = 0;
    virtual void setDefaultPlayProgram(const STDefaultPlayProgramInfo& info) = 0;
    /// @}

    sigslot::signal<> programListChanged;        ///< programGroups(), or a name in them
    sigslot::signal<> defaultPlayProgramChanged; ///< getDefaultPlayProgram()
};

} // namespace mivo::mediadispatch
Q_DECLARE_METATYPE(mivo::mediadispatch::STDefaultPlayProgramInfo)
