#pragma once

#include "mivohostapi/settingsrecords.h"

#include <sigslot/signal.hpp>

#include <QtCore/qglobal.h>

/// The host's settings store, as the library calls it.
///
/// Threads: every operation, and every connecting to and disconnecting from a signal, happens on
/// the runtime thread (see IZRRuntime). The store emits its signals on that thread too, after it
/// has taken the new value over, also for a write that a page made. Ownership: the host's; a store
/// outlives the pages bound to it. A setter refuses or corrects what is out of range, and reports
/// what it holds then through the change signal; it never throws.
class Q_DECL_EXPORT IMivoSettings
{
public:
    virtual ~IMivoSettings() = default;

    /// Undo steps that the host keeps, 1 to 500; taken up at the host's next start.
    virtual void setUndoStep(int step) = 0;
    virtual int getUndoStep() = 0;

    /// Whether resources are synchronised without being asked.
    virtual void setAutoSyncResources(bool on) = 0;
    virtual bool getAutoSyncResources() = 0;

    /// The kind of resource that was chosen last, and its duration.
    virtual STResourceSettingsInfo getResourceSettings() = 0;

    /// How long a resource of each kind plays: milliseconds, 3000 up to a second before a day.
    virtual void setPictureDuration(int milliseconds) = 0;
    virtual int getPictureDuration() = 0;
    virtual void setPowerPointDuration(int milliseconds) = 0;
    virtual int getPowerPointDuration() = 0;
    virtual void setOSDDuration(int milliseconds) = 0;
    virtual int getOSDDuration() = 0;

    sigslot::signal<const int> undoStepChanged;
    sigslot::signal<const bool> autoSyncResourcesChanged;
    sigslot::signal<const STResourceSettingsInfo&> resourceSettingsChanged; ///< of any one kind
};

/// The store type that a host derives its own store from and that pages are bound to.
class Q_DECL_EXPORT MivoSettings : public IMivoSettings
{
};
