#include "app/TLang.h"

#include <QFile>
#include <QTextStream>

TLang Lang;

void TLang::loadData(const QString& file) {
    texts.clear();
    QFile f(file);
    if (!f.open(QIODevice::ReadOnly | QIODevice::Text)) return;
    QTextStream in(&f);
    in.setCodec("UTF-8");
    QString line;
    while (in.readLineInto(&line)) {
        line.replace(QLatin1String("\\n"), QLatin1String("\n"));
        if (line.startsWith(QLatin1Char('#'))) continue;
        texts.append(line);
    }
}

QString TLang::get(int id) const {
    if (id < 0 || id >= texts.size()) return QStringLiteral("?????");
    return texts.at(id);
}
