#pragma once

#include "mivohostapi/imivosettings.h"

/// The least that a store can be: what is measured is the way to it.
class BenchStore : public MivoSettings
{
public:
    void setUndoStep(int step) override { undoStepChanged(m_undoStep = step); }
    int getUndoStep() override { return m_undoStep; }
    void setAutoSyncResources(bool on) override { autoSyncResourcesChanged(m_autoSync = on); }
    bool getAutoSyncResources() override { return m_autoSync; }

private:
    int m_undoStep = 50;
    bool m_autoSync = false;
};
