#pragma once

#include "AppGlobals.h"
#include "SettingsBootstrap.h"
#include "TempDataHome.h"
#include "clsMMSManager.h"
#include "clsPropertiesXML.h"

// A test with the program's settings open and a message manager in its work
// folder, as the window starts.
class WorkFolderTest : public TempDataHome {
protected:
    void SetUp() override {
        TempDataHome::SetUp();
        AppGlobals::installSettings(SettingsBootstrap::openAndPrepare());
        m_manager.InitializeFromSettings();
        m_work = m_manager.GetWorkFolderPath();
    }

    clsMMSManager m_manager;
    QString m_work;
};
