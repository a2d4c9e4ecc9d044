#pragma once

#include "app/TTypes.h"

#include <QList>
#include <QString>
#include <QTime>

// One coloured piece of a log line.
struct TLogPiece {
    enum Role { Time, Cmd, Param, Text, Work, Result, Success, Failed };
    Role role;
    QString text;
    bool operator==(const TLogPiece& o) const { return role == o.role && text == o.text; }
};

// What the execution log shows for each event, without widgets: the main window's log colours the
// pieces, the command-line runner prints them. Every event starts a new line.
class TLogText {
public:
    TLogText(bool showTime, bool showMSec) : showTime(showTime), showMSec(showMSec) {}

    // The pieces of one event at the given time; none for codes that the log does not show.
    QList<TLogPiece> event(TCodeExec code, const QString& text, const QString& param, const QTime& now) const;

    static QString toPlain(const QList<TLogPiece>& pieces);
    // Control characters from a project, a file name or the programmer would act on a terminal or
    // start a forged line; they are shown as escapes instead ("\\n", "\\x1B"). keepLineBreaks keeps
    // the line breaks of messages that consist of several lines.
    static QString escape(const QString& text, bool keepLineBreaks = false);
    // The heading, rule, message and rule of a failed run.
    static QString failureBlock(const QString& text);

private:
    QString stamp(const QTime& now) const;
    QString indent() const;

    bool showTime, showMSec;
};
