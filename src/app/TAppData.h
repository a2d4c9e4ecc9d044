#pragma once

#include "link/TProgName.h"
#include "link/TProgType.h"

#include <QColor>
#include <QString>

class TSettings;

// Every setting that start-up and the run-time parts need, read from and written to the settings file.
// Data folders are stored as given (relative to the application folder by default); the get...Abs()
// accessors resolve them.
class TAppData {
public:
    TAppData();

    void loadData();
    void saveData() const;

    // Data folders and files.
    QString pathLanguage, language, pathProjects, pathDevices, pathProgs, selectPrjListFile;
    QString getPathLanguageAbs() const;
    QString getLanguageFileAbs() const;
    QString getPathProjectsAbs() const;
    QString getPathDevicesAbs() const;
    QString getPathProgsAbs() const;
    // The description file of a named programmer, absolute; empty when the name or its type is unknown.
    QString getProgFile(const QString& name) const;
    QString getSelectPrjListFileAbs() const;

    // Look and feel.
    QString style;
    int debug = 0;
    QString fontAppName, fontMonoName;
    int fontAppSize = 0, fontMonoSize = 0;
    int iconsSet = 0;

    // Main window behaviour.
    bool openLastPrj = true;
    QString lastPrj;

    // Execution log presentation.
    bool logShowTime = true, logShowMSec = false, logClearBeforeRun = true;
    QColor colorTime, colorCmd, colorParam, colorText, colorWork, colorResult, colorSuccess, colorFailed,
        colorBackground;

    // Confirmations.
    bool confirmQuit = true, confirmSavePrj = true, confirmProcess = true;

    // Whether a run checks its commands and data files before the first command is sent.
    bool checkBeforeRun = true;
    QString logDir; // the run journal's folder; empty: none

    // Programmer registries and the index of the default programmer.
    TProgType progType;
    TProgName progName;
    int progDefault = 0;

private:
    QString resolve(const QString& path) const;
    void loadProgs(TSettings& s);
    void saveProgs(TSettings& s) const;
};

extern TAppData AppData;
