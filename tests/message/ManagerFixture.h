#pragma once

#include "AppGlobals.h"
#include "SettingsBootstrap.h"
#include "TempDataHome.h"
#include "clsMMSManager.h"
#include "clsPropertiesXML.h"

// A message manager on the settings of a fresh user data folder.
class ManagerFixture : public TempDataHome {
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
