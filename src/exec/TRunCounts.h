#pragma once

#include "exec/TRunControl.h"

#include <QString>

// How often each configuration of a project passed, failed and was stopped, kept between sessions. The
// project file's layout is fixed (a configuration holds its name, description and commands only), so
// the counts live in the settings, keyed by the project file and the configuration's name.
class TRunCounts {
public:
    static TRunControl::Tally load(const QString& prjFile, const QString& cfgName);
    static void save(const QString& prjFile, const QString& cfgName, const TRunControl::Tally& tally);
};
