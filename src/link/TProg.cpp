#include "link/TProg.h"

#include "app/TSettings.h"

TProg::TProg(const QString& file, QObject* parent) : QObject(parent), fileName(file) {}

bool TProg::supportCmd(const QString& code) const {
    TSettings s(fileName);
    return s.value(QStringLiteral("/Commands/%1").arg(code), false).toBool();
}
