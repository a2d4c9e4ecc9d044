#pragma once

// The English texts, the device catalogue of the source tree and every programmer described by the
// simulator's description: what the form and model tests of the device families stand on.

#include "app/TAppData.h"
#include "app/TLang.h"
#include "link/TProg.h"
#include "project/TDataPrj.h"

inline void useSourceCatalogue() {
    Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
    AppData.pathDevices = QStringLiteral(TARVELIX_DATA_DIR "/devices");
    ProjectData.setProgFactory(
        [](const QString&) { return new TProg(QStringLiteral(TARVELIX_DATA_DIR "/progs/sim.cfg")); });
}
