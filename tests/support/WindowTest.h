#pragma once

// What every test of the main window starts with: the types its signals carry between threads, a
// settings file of its own, the English texts, and no question at quitting nor a project reopened from
// an earlier session.

#include "app/TAppData.h"
#include "app/TLang.h"
#include "app/TSettings.h"
#include "app/TTypes.h"
#include "link/CLink.h"
#include "support/SimFixture.h"

#include <QTemporaryDir>

namespace WindowTest {

// Returns the settings file, in dir.
inline QString setUp(const QTemporaryDir& dir) {
    qRegisterMetaType<TCodeView>("TCodeView");
    qRegisterMetaType<TData>("TData");
    const QString ini = dir.filePath("t.ini");
    TSettings::setFileNameIniOverride(ini);
    AppData.loadData();
    Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
    AppData.confirmQuit = false;
    AppData.openLastPrj = false;
    AppData.selectPrjListFile = dir.filePath("sp.lpl");
    return ini;
}

// The programmer descriptions and the device catalogue that come with the application.
inline void useShippedData() {
    AppData.pathProgs = QStringLiteral(TARVELIX_DATA_DIR "/progs");
    AppData.pathDevices = QStringLiteral(TARVELIX_DATA_DIR "/devices");
}

// The simulator as the one programmer the window knows.
inline void useSimulator(const SimFixture& sim) {
    AppData.progName.clear();
    AppData.progName.append(false, CLink::simProgName, sim.link(), CLink::simTypeName);
}

} // namespace WindowTest
