#pragma once

#include "app/TTypes.h"
#include "exec/TLogText.h"

#include <QColor>
#include <QWidget>

class QProgressBar;
class QTextEdit;

// The execution log of one configuration: coloured lines that grow as the worker reports, and a
// progress bar under them.
class TWgtLogExec : public QWidget {
    Q_OBJECT
public:
    explicit TWgtLogExec(QWidget* parent = nullptr);

    void setColorTime(const QColor& c) { colors[TLogPiece::Time] = c; }
    void setColorCmd(const QColor& c) { colors[TLogPiece::Cmd] = c; }
    void setColorParam(const QColor& c) { colors[TLogPiece::Param] = c; }
    void setColorText(const QColor& c) { colors[TLogPiece::Text] = c; }
    void setColorWork(const QColor& c) { colors[TLogPiece::Work] = c; }
    void setColorResult(const QColor& c) { colors[TLogPiece::Result] = c; }
    void setColorSuccess(const QColor& c) { colors[TLogPiece::Success] = c; }
    void setColorFailed(const QColor& c) { colors[TLogPiece::Failed] = c; }
    void setColorBackground(const QColor& c);
    // Takes the nine colours and the font from the application's settings.
    void applySettings();

    void showTimeCmdName(const QString& name, const QString& param);
    void showTimeText(const QString& text);
    void showText(const QString& text);
    void showTextWork(const QString& text);
    void showTextResult(const QString& text);
    void showTimeSuccess(const QString& text);
    void showTimeFailed(const QString& text);
    void showProgressValue(int value);
    void clear();
    void blockLogText(bool block);

    QTextEdit* textEdit() const { return text; }
    QProgressBar* progressBar() const { return progress; }

public slots:
    void slotExecEventText(TCodeExec code, QString text, QString param);
    void slotExecEventProc(int procent);

private:
    void show(TCodeExec code, const QString& text, const QString& param);
    void moveToEnd();

    QTextEdit* text;
    QProgressBar* progress;
    QColor colors[TLogPiece::Failed + 1];
};
