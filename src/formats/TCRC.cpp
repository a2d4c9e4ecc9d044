#include "formats/TCRC.h"

#include "app/TApp.h"
#include "formats/TCRCModels.h"

#include <QDir>
#include <QFile>
#include <QTextStream>

ICRC* TCRC::createCRCObject(const QString& name) {
    return TCRCModels::create(name);
}

QString TCRC::getCRCNameDef() {
    return "CRC-32";
}

QString TCRC::getFormatDef() {
    return "bin";
}

QStringList TCRC::getAlgListView() {
    return getAlgListView(QDir(TApp::getPathApp()).filePath("crc.lst"));
}

QStringList TCRC::getAlgListView(const QString& file) {
    QStringList list;
    QFile in(file);
    if (!in.open(QIODevice::ReadOnly | QIODevice::Text)) return list;
    QTextStream stream(&in);
    stream.setCodec("UTF-8");
    while (!stream.atEnd()) {
        const QString line = stream.readLine().trimmed();
        const int eq = line.indexOf('=');
        if (line.isEmpty() || line.startsWith('#') || eq < 0) continue;
        // The name is taken as written; a name that is not in the catalogue simply yields no object.
        if (line.mid(eq + 1).trimmed() == "1") list.append(line.left(eq));
    }
    return list;
}
