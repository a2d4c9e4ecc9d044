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

QList<TLogPiece> TLogText::event(TCodeExec code, const QString& text, const QString& param,
                                 const QTime& now) const {
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
