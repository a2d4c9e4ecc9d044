#include "exec/TLogText.h"

#include "app/TLang.h"

QString TLogText::stamp(const QTime& now) const {
    return now.toString(showMSec ? QStringLiteral("hh:mm:ss.zzz ") : QStringLiteral("hh:mm:ss "));
}

// Continuation lines align with the text after a time stamp.
QString TLogText::indent() const {
    return showTime ? QString(showMSec ? 13 : 9, QLatin1Char(' ')) : QString();
}

QString TLogText::failureBlock(const QString& text) {
    const QString rule(60, QLatin1Char('='));
    return QStringLiteral("%1\n%2\n%3\n%4\n").arg(Lang.get(386), rule, text, rule);
}

namespace {
bool isControl(ushort c) {
    return c < 0x20 || (c >= 0x7F && c <= 0x9F) || c == 0x2028 || c == 0x2029;
}
} // namespace

QString TLogText::escape(const QString& text, bool keepLineBreaks) {
    QString out;
    out.reserve(text.size());
    for (const QChar ch : text) {
        const ushort c = ch.unicode();
        if (!isControl(c) || (keepLineBreaks && c == '\n')) {
            out += ch;
            continue;
        }
        switch (c) {
        case '\n':
            out += QLatin1String("\\n");
            break;
        case '\r':
            out += QLatin1String("\\r");
            break;
        case '\t':
            out += QLatin1String("\\t");
            break;
        default:
            out += QLatin1String("\\x") +
                   QString::number(c, 16).toUpper().rightJustified(c > 0xFF ? 4 : 2, QLatin1Char('0'));
        }
    }
    return out;
}

// A command's name and parameters are one line; messages may hold several.
QList<TLogPiece> TLogText::event(TCodeExec code, const QString& rawText, const QString& rawParam,
                                 const QTime& now) const {
    const QString text = escape(rawText, code != ExecCmdStart);
    const QString param = escape(rawParam);
    QList<TLogPiece> pieces;
    auto timed = [&] {
        if (showTime) pieces.append({TLogPiece::Time, stamp(now)});
    };
    switch (code) {
    case ExecCmdStart:
        timed();
        pieces.append({TLogPiece::Cmd, text});
        if (!param.isEmpty()) pieces.append({TLogPiece::Param, QStringLiteral(" (%1)").arg(param)});
        break;
    case ExecText:
        timed();
        pieces.append({TLogPiece::Text, text});
        break;
    case ExecMessage:
        pieces.append({TLogPiece::Text, indent() + text});
        break;
    case ExecInfo:
        pieces.append({TLogPiece::Work, text});
        break;
    case ExecResult:
        pieces.append({TLogPiece::Result, indent() + text});
        break;
    case ExecSuccess:
        timed();
        pieces.append({TLogPiece::Success, text});
        break;
    case ExecFailed:
        timed();
        pieces.append({TLogPiece::Failed, failureBlock(text)});
        break;
    default:
        break;
    }
    return pieces;
}

QString TLogText::toPlain(const QList<TLogPiece>& pieces) {
    QString out;
    for (const TLogPiece& p : pieces)
        out += p.text;
    return out;
}
