#include "misc/TNumberText.h"

#include "misc/dev_misc.h"

#include <QRegularExpression>

#include <limits>

qint64 TNumberText::parse(const QString& text, bool& ok) {
    ok = false;
    static const QRegularExpression hex(QStringLiteral("^0x([0-9a-f]+)$"),
                                        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression scaled(QStringLiteral("^([0-9]+) ?([kmg])(ib)?$"),
                                           QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression bareHex(QStringLiteral("^[0-9a-f]*[a-f][0-9a-f]*$"),
                                            QRegularExpression::CaseInsensitiveOption);
    const QString t = text.trimmed();
    qint64 value = 0;
    if (const auto m = hex.match(t); m.hasMatch()) {
        value = m.captured(1).toLongLong(&ok, 16);
    } else if (const auto m = scaled.match(t); m.hasMatch()) {
        value = m.captured(1).toLongLong(&ok, 10);
        const int shift = 10 * (1 + QStringLiteral("kmg").indexOf(m.captured(2).toLower()));
        ok = ok && value <= (std::numeric_limits<qint64>::max() >> shift);
        if (ok) value <<= shift;
    } else if (bareHex.match(t).hasMatch()) {
        value = t.toLongLong(&ok, 16);
    } else if (!t.isEmpty() && t.front().isDigit()) {
        value = t.toLongLong(&ok, 10);
    }
    if (!ok || value < 0) return ok = false, 0;
    return value;
}

QString TNumberText::show(qint64 value) {
    return QStringLiteral("0x") + TMiscDev::getHexFromInt(value);
}
