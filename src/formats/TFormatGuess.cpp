#include "formats/TFormatGuess.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace {
const QString kHex = QStringLiteral("hex");
const QString kBin = QStringLiteral("bin");
} // namespace

QString TFormatGuess::keyOfName(const QString& file) {
    const QString ext = QFileInfo(file).suffix().toLower();
    return ext == QLatin1String("hex") || ext == QLatin1String("ihx") || ext == QLatin1String("ihex") ? kHex
                                                                                                      : kBin;
}

// A record is ":", a byte count, an address, a type and a check byte: at least 11 characters.
QString TFormatGuess::keyOf(const QString& file) {
    QFile f(file);
    if (!f.open(QIODevice::ReadOnly)) return keyOfName(file);
    const QByteArray head = f.read(64).trimmed();
    if (head.isEmpty()) return keyOfName(file);
    static const QRegularExpression record(QStringLiteral("^:[0-9A-Fa-f]{10}"));
    return record.match(QString::fromLatin1(head)).hasMatch() ? kHex : kBin;
}
