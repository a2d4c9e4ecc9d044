#include "app/TAppData.h"

#include "app/TApp.h"
#include "app/TSettings.h"
#include "link/CLink.h"

TAppData AppData;

TAppData::TAppData() {
    pathLanguage = "language";
    language = "eng.lng";
    pathProjects = "projects";
    pathDevices = "devices";
    pathProgs = "progs";
    selectPrjListFile = "sp.lpl";
    style = "Fusion";
    colorTime = QColor(0x80, 0x80, 0x80);
    colorCmd = QColor(0x00, 0x00, 0xA0);
    colorParam = QColor(0x00, 0x60, 0x80);
    colorText = QColor(0x20, 0x20, 0x20);
    colorWork = QColor(0xA0, 0x60, 0x00);
    colorResult = QColor(0x60, 0x00, 0x90);
    colorSuccess = QColor(0x00, 0x80, 0x00);
    colorFailed = QColor(0xC0, 0x00, 0x00);
    colorBackground = QColor(0xFF, 0xFF, 0xFF);
}

QString TAppData::resolve(const QString& path) const {
    return TApp::getAbsoluteFile(TApp::getPathApp(), path);
}

QString TAppData::getPathLanguageAbs() const {
    return resolve(pathLanguage);
}
QString TAppData::getLanguageFileAbs() const {
    return TApp::getAbsoluteFile(getPathLanguageAbs(), language);
}
QString TAppData::getPathProjectsAbs() const {
    return resolve(pathProjects);
}
QString TAppData::getPathDevicesAbs() const {
    return resolve(pathDevices);
}
QString TAppData::getPathProgsAbs() const {
    return resolve(pathProgs);
}

QString TAppData::getProgFile(const QString& name) const {
    if (!progName.contains(name)) return QString();
    const QString type = progName.getData(name).type;
    if (!progType.contains(type)) return QString();
    return TApp::getAbsoluteFile(getPathProgsAbs(), progType.getFile(type));
}

QString TAppData::getSelectPrjListFileAbs() const {
    return resolve(selectPrjListFile);
}

namespace {
QColor readColor(TSettings& s, const QString& key, const QColor& def) {
    const QColor c(s.value(key, def.name()).toString());
    return c.isValid() ? c : def;
}
} // namespace

void TAppData::loadData() {
    TSettings s;
    const TAppData def;
    pathLanguage = s.value("/Main/PathLanguage", def.pathLanguage).toString();
    language = s.value("/Main/Language", def.language).toString();
    pathProjects = s.value("/Main/PathProjects", def.pathProjects).toString();
    pathDevices = s.value("/Main/PathDevices", def.pathDevices).toString();
    pathProgs = s.value("/Main/PathProgs", def.pathProgs).toString();
    selectPrjListFile = s.value("/Main/SelectPrjListFile", def.selectPrjListFile).toString();
    style = s.value("/Main/Style", def.style).toString();
    debug = s.value("/Main/Debug", 0).toInt();
    TApp::setDebug(debug != 0);
    fontAppName = s.value("/Main/FontAppName", QString()).toString();
    fontAppSize = s.value("/Main/FontAppSize", 0).toInt();
    fontMonoName = s.value("/Main/FontMonoName", QString()).toString();
    fontMonoSize = s.value("/Main/FontMonoSize", 0).toInt();
    iconsSet = s.value("/Main/IconsSet", 0).toInt();
    openLastPrj = s.value("/Main/OpenLastPrj", true).toBool();
    lastPrj = s.value("/Main/LastPrj", QString()).toString();

    logShowTime = s.value("/Interface/ExecLogShowTime", true).toBool();
    logShowMSec = s.value("/Interface/ExecLogShowMSec", false).toBool();
    logClearBeforeRun = s.value("/Interface/ExecLogClear", true).toBool();
    colorTime = readColor(s, "/Interface/ExecLogColorTime", def.colorTime);
    colorCmd = readColor(s, "/Interface/ExecLogColorCmd", def.colorCmd);
    colorParam = readColor(s, "/Interface/ExecLogColorParam", def.colorParam);
    colorText = readColor(s, "/Interface/ExecLogColorText", def.colorText);
    colorWork = readColor(s, "/Interface/ExecLogColorWork", def.colorWork);
    colorResult = readColor(s, "/Interface/ExecLogColorResult", def.colorResult);
    colorSuccess = readColor(s, "/Interface/ExecLogColorSuccess", def.colorSuccess);
    colorFailed = readColor(s, "/Interface/ExecLogColorFailed", def.colorFailed);
    colorBackground = readColor(s, "/Interface/ExecLogColorBackground", def.colorBackground);

    confirmQuit = s.value("/Confirmation/Quit", true).toBool();
    confirmSavePrj = s.value("/Confirmation/SavePrj", true).toBool();
    confirmProcess = s.value("/Confirmation/Process", true).toBool();
    checkBeforeRun = s.value("/Main/CheckBeforeRun", true).toBool();
    logDir = s.value("/Main/LogDir", QString()).toString();
    loadProgs(s);
}

// Without any programmer types a fresh installation registers the simulator on its default link, so
// that it talks to the simulator at once, the types of the bridged hardware, and an Arduino Nano with
// the Tarvelix firmware.
void TAppData::loadProgs(TSettings& s) {
    progType.clear();
    progName.clear();
    progDefault = s.value("/Prog/Default", 0).toInt();
    if (!s.childGroups().contains("ProgTypeList")) {
        progType.append(CLink::simTypeName, CLink::simTypeFile);
        for (const CLink::TypeEntry& t : CLink::bridgeTypes)
            progType.append(t.name, t.file);
        progName.append(false, CLink::simProgName, CLink::simLinkDefault, CLink::simTypeName);
        progType.append(CLink::nanoTypeName, CLink::nanoTypeFile);
        progName.append(false, CLink::nanoProgName, CLink::nanoPortDefault, CLink::nanoTypeName);
        return;
    }
    for (int i = 0;; ++i) {
        const QStringList t = s.value(QStringLiteral("/ProgTypeList/Type%1").arg(i)).toStringList();
        if (t.size() != 2) break;
        progType.append(t.at(0), t.at(1));
    }
    for (int i = 0;; ++i) {
        const QStringList n = s.value(QStringLiteral("/ProgNameList/Name%1").arg(i)).toStringList();
        if (n.size() != 4) break;
        progName.append(n.at(0) == "1", n.at(1), n.at(2), n.at(3));
    }
}

void TAppData::saveProgs(TSettings& s) const {
    s.remove("ProgTypeList");
    for (int i = 0; i < progType.count(); ++i)
        s.setValue(QStringLiteral("/ProgTypeList/Type%1").arg(i),
                   QStringList{progType.getTypeFromIndex(i), progType.getFileFromIndex(i)});
    s.remove("ProgNameList");
    for (int i = 0; i < progName.count(); ++i) {
        const TProgInfo info = progName.getDataFromIndex(i);
        s.setValue(QStringLiteral("/ProgNameList/Name%1").arg(i),
                   QStringList{info.flag ? "1" : "0", progName.getNameFromIndex(i), info.port, info.type});
    }
    s.setValue("/Prog/Default", progDefault);
}

void TAppData::saveData() const {
    TSettings s;
    s.setValue("/Main/PathLanguage", pathLanguage);
    s.setValue("/Main/Language", language);
    s.setValue("/Main/PathProjects", pathProjects);
    s.setValue("/Main/PathDevices", pathDevices);
    s.setValue("/Main/PathProgs", pathProgs);
    s.setValue("/Main/SelectPrjListFile", selectPrjListFile);
    s.setValue("/Main/Style", style);
    s.setValue("/Main/Debug", debug);
    s.setValue("/Main/FontAppName", fontAppName);
    s.setValue("/Main/FontAppSize", fontAppSize);
    s.setValue("/Main/FontMonoName", fontMonoName);
    s.setValue("/Main/FontMonoSize", fontMonoSize);
    s.setValue("/Main/IconsSet", iconsSet);
    s.setValue("/Main/OpenLastPrj", openLastPrj);
    s.setValue("/Main/LastPrj", lastPrj);

    s.setValue("/Interface/ExecLogShowTime", logShowTime);
    s.setValue("/Interface/ExecLogShowMSec", logShowMSec);
    s.setValue("/Interface/ExecLogClear", logClearBeforeRun);
    s.setValue("/Interface/ExecLogColorTime", colorTime.name());
    s.setValue("/Interface/ExecLogColorCmd", colorCmd.name());
    s.setValue("/Interface/ExecLogColorParam", colorParam.name());
    s.setValue("/Interface/ExecLogColorText", colorText.name());
    s.setValue("/Interface/ExecLogColorWork", colorWork.name());
    s.setValue("/Interface/ExecLogColorResult", colorResult.name());
    s.setValue("/Interface/ExecLogColorSuccess", colorSuccess.name());
    s.setValue("/Interface/ExecLogColorFailed", colorFailed.name());
    s.setValue("/Interface/ExecLogColorBackground", colorBackground.name());

    s.setValue("/Confirmation/Quit", confirmQuit);
    s.setValue("/Confirmation/SavePrj", confirmSavePrj);
    s.setValue("/Confirmation/Process", confirmProcess);
    s.setValue("/Main/CheckBeforeRun", checkBeforeRun);
    s.setValue("/Main/LogDir", logDir);
    saveProgs(s);
    s.sync();
}
