#pragma once

// The settings file of a command-line test: the English texts, no time stamps in the log, and one
// programmer "Sim" on the given simulator link.

#include <QDir>
#include <QFile>
#include <QString>

inline QString writeCliSettings(const QString& folder, const QString& link) {
    const QString ini = QDir(folder).filePath("tarvelix.ini");
    QFile f(ini);
    f.open(QIODevice::WriteOnly);
    f.write(QStringLiteral("[Main]\nLanguage=eng.lng\n[Interface]\nExecLogShowTime=false\n"
                           "[ProgTypeList]\nType0=Simulator, " TARVELIX_DATA_DIR "/progs/sim.cfg\n"
                           "[ProgNameList]\nName0=0, Sim, %1, Simulator\n")
                .arg(link)
                .toUtf8());
    return ini;
}
