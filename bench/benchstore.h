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
    STResourceSettingsInfo getResourceSettings() override { return {}; }
    void setPictureDuration(int /*milliseconds*/) override {}
    int getPictureDuration() override { return 5000; }
    void setPowerPointDuration(int /*milliseconds*/) override {}
    int getPowerPointDuration() override { return 5000; }
    void setOSDDuration(int /*milliseconds*/) override {}
    int getOSDDuration() override { return 5000; }

private:
    int m_undoStep = 50;
    bool m_autoSync = false;
};
