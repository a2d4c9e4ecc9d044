#include "app/TSettings.h"

#include "app/CApp.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace {
QString& iniOverride() {
    static QString file;
    return file;
}
} // namespace

TSettings::TSettings() : TSettings(getFileNameIniDefault()) {}

TSettings::TSettings(const QString& fileName) : QSettings(fileName, QSettings::IniFormat) {
    setIniCodec(CApp::codepage);
}

QString TSettings::getFileNameIniDefault() {
    if (!iniOverride().isEmpty()) return iniOverride();
    const QFileInfo exe(QCoreApplication::applicationFilePath());
    return exe.absolutePath() + "/" + exe.completeBaseName() + "." + CApp::ext_ini;
}

void TSettings::setFileNameIniOverride(const QString& fileName) {
    iniOverride() = fileName;
}
