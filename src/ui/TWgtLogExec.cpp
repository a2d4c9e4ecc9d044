#include "ui/TWgtLogExec.h"

#include "app/TAppData.h"
#include "exec/TThreadSync.h"

#include <QApplication>
#include <QFont>
#include <QProgressBar>
#include <QTextCursor>
#include <QTextEdit>
#include <QTime>
#include <QVBoxLayout>

TWgtLogExec::TWgtLogExec(QWidget* parent) : QWidget(parent) {
    text = new QTextEdit(this);
    text->setReadOnly(true);
    text->setLineWrapMode(QTextEdit::NoWrap);
    text->setUndoRedoEnabled(false);
    progress = new QProgressBar(this);
    progress->setRange(0, 100);
    progress->setValue(0);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(text);
    layout->addWidget(progress);
    blockLogText(false);
}

void TWgtLogExec::setColorBackground(const QColor& c) {
    QPalette pal = text->palette();
    pal.setColor(QPalette::Base, c);
    text->setPalette(pal);
}

void TWgtLogExec::applySettings() {
    setColorTime(AppData.colorTime);
    setColorCmd(AppData.colorCmd);
    setColorParam(AppData.colorParam);
    setColorText(AppData.colorText);
    setColorWork(AppData.colorWork);
    setColorResult(AppData.colorResult);
    setColorSuccess(AppData.colorSuccess);
    setColorFailed(AppData.colorFailed);
    setColorBackground(AppData.colorBackground);
    QFont font = text->font();
    font.setStyleHint(QFont::Monospace);
    if (!AppData.fontMonoName.isEmpty()) font.setFamily(AppData.fontMonoName);
    if (AppData.fontMonoSize > 0) font.setPointSize(AppData.fontMonoSize);
    text->setFont(font);
}

// Every event starts on a line of its own; the pieces keep the colour of their role. The switches are
// read per event so that a change in the settings shows on the next line.
void TWgtLogExec::show(TCodeExec code, const QString& line, const QString& param) {
    const TLogText log(AppData.logShowTime, AppData.logShowMSec);
    const QList<TLogPiece> pieces = log.event(code, line, param, QTime::currentTime());
    if (pieces.isEmpty()) return;
    QTextCursor cursor(text->document());
    cursor.movePosition(QTextCursor::End);
    const QString plain = text->toPlainText();
    if (!plain.isEmpty() && !plain.endsWith(QLatin1Char('\n'))) cursor.insertText(QStringLiteral("\n"));
    for (const TLogPiece& piece : pieces) {
        QTextCharFormat format;
        if (colors[piece.role].isValid()) format.setForeground(colors[piece.role]);
        cursor.insertText(piece.text, format);
    }
    moveToEnd();
}

void TWgtLogExec::showTimeCmdName(const QString& name, const QString& param) {
    show(0, name, param);
}
void TWgtLogExec::showTimeText(const QString& t) {
    show(1, t, QString());
}
void TWgtLogExec::showText(const QString& t) {
    show(2, t, QString());
}
void TWgtLogExec::showTextWork(const QString& t) {
    show(3, t, QString());
}
void TWgtLogExec::showTextResult(const QString& t) {
    show(4, t, QString());
}
void TWgtLogExec::showTimeSuccess(const QString& t) {
    show(5, t, QString());
}
void TWgtLogExec::showTimeFailed(const QString& t) {
    show(6, t, QString());
}

void TWgtLogExec::showProgressValue(int value) {
    progress->setValue(qBound(0, value, 100));
}

void TWgtLogExec::clear() {
    text->clear();
    progress->setValue(0);
}

// While a run writes, the user must not move the cursor away from the end; afterwards the text may be
// selected and copied.
void TWgtLogExec::blockLogText(bool block) {
    text->setTextInteractionFlags(block ? Qt::NoTextInteraction
                                        : Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    moveToEnd();
}

void TWgtLogExec::moveToEnd() {
    QTextCursor cursor = text->textCursor();
    cursor.movePosition(QTextCursor::End);
    text->setTextCursor(cursor);
    text->ensureCursorVisible();
}

void TWgtLogExec::slotExecEventText(TCodeExec code, QString line, QString param) {
    TThreadSync::Receiver sync;
    if (code < ExecCmdStart || code > ExecFailed) return;
    QApplication::processEvents();
    show(code, line, param);
    QApplication::processEvents();
}

void TWgtLogExec::slotExecEventProc(int procent) {
    TThreadSync::Receiver sync;
    showProgressValue(procent);
}
