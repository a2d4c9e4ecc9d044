#include "app/TAppData.h"
#include "app/TLang.h"
#include "ui/TWgtLogExec.h"

#include <QProgressBar>
#include <QRegularExpression>
#include <QTextBlock>
#include <QTextEdit>
#include <QtTest>

namespace {
// Every coloured run of the log as "text@#rrggbb", in order.
QStringList runs(TWgtLogExec& log) {
    QStringList out;
    for (QTextBlock b = log.textEdit()->document()->begin(); b.isValid(); b = b.next())
        for (auto it = b.begin(); !it.atEnd(); ++it)
            out << it.fragment().text() + "@" + it.fragment().charFormat().foreground().color().name();
    return out;
}
} // namespace

class TestGuiLog : public QObject {
    Q_OBJECT
    TWgtLogExec* log = nullptr;

private slots:
    void initTestCase() { Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng")); }
    void init() {
        AppData.logShowTime = false;
        AppData.logShowMSec = false;
        log = new TWgtLogExec;
        const QStringList c = {"#000001", "#000002", "#000003", "#000004", "#000005",
                               "#000006", "#000007", "#000008", "#0000ff"};
        log->setColorTime(QColor(c[0]));
        log->setColorCmd(QColor(c[1]));
        log->setColorParam(QColor(c[2]));
        log->setColorText(QColor(c[3]));
        log->setColorWork(QColor(c[4]));
        log->setColorResult(QColor(c[5]));
        log->setColorSuccess(QColor(c[6]));
        log->setColorFailed(QColor(c[7]));
        log->setColorBackground(QColor(c[8]));
    }
    void cleanup() { delete log; }

    void eachCodeHasItsTextAndColour() {
        log->slotExecEventText(0, "Delay", "100 ms");
        log->slotExecEventText(0, "Stop", "");
        log->slotExecEventText(1, "note", "");
        log->slotExecEventText(2, "plain", "");
        log->slotExecEventText(3, "working", "");
        log->slotExecEventText(4, "result", "");
        log->slotExecEventText(5, "done", "");
        QCOMPARE(log->textEdit()->toPlainText(),
                 QString("Delay (100 ms)\nStop\nnote\nplain\nworking\nresult\ndone"));
        QCOMPARE(runs(*log),
                 QStringList({"Delay@#000002", " (100 ms)@#000003", "Stop@#000002", "note@#000004",
                              "plain@#000004", "working@#000005", "result@#000006", "done@#000007"}));
        QCOMPARE(log->textEdit()->palette().color(QPalette::Base), QColor("#0000ff"));
    }

    void unknownCodesChangeNothing() {
        log->slotExecEventText(3, "x", "");
        log->slotExecEventText(7, "seven", "");
        log->slotExecEventText(9, "nine", "");
        log->slotExecEventText(-1, "minus", "");
        QCOMPARE(log->textEdit()->toPlainText(), QString("x"));
    }

    void failureIsAFramedBlock() {
        log->slotExecEventText(0, "Read", "");
        log->slotExecEventText(6, "No answer", "");
        log->slotExecEventText(3, "after", "");
        const QString rule(60, '=');
        QCOMPARE(log->textEdit()->toPlainText(),
                 QString("Read\n%1\n%2\nNo answer\n%2\nafter").arg(Lang.get(386), rule));
        const QString failed = "@#000008";
        QCOMPARE(runs(*log).mid(1, 4),
                 QStringList({Lang.get(386) + failed, rule + failed, "No answer" + failed, rule + failed}));
    }

    void timeStampsAndIndent() {
        AppData.logShowTime = true;
        AppData.logShowMSec = true;
        log->slotExecEventText(0, "Delay", "");
        log->slotExecEventText(4, "ok", "");
        AppData.logShowMSec = false;
        log->slotExecEventText(2, "text", "");
        const QStringList lines = log->textEdit()->toPlainText().split('\n');
        QCOMPARE(lines.size(), 3);
        QVERIFY(QRegularExpression("^\\d\\d:\\d\\d:\\d\\d\\.\\d\\d\\d Delay$").match(lines[0]).hasMatch());
        QCOMPARE(lines[1], QString(13, ' ') + "ok");
        QCOMPARE(lines[2], QString(9, ' ') + "text");
        QCOMPARE(runs(*log).first().right(8), QString("@#000001"));
    }

    void progressBarAndClear() {
        log->slotExecEventProc(42);
        QCOMPARE(log->progressBar()->value(), 42);
        log->slotExecEventProc(250);
        QCOMPARE(log->progressBar()->value(), 100);
        log->slotExecEventText(3, "x", "");
        log->clear();
        QCOMPARE(log->textEdit()->toPlainText(), QString());
        QCOMPARE(log->progressBar()->value(), 0);
    }

    void blockingForbidsInteraction() {
        log->blockLogText(true);
        QCOMPARE(log->textEdit()->textInteractionFlags(), Qt::NoTextInteraction);
        log->blockLogText(false);
        QVERIFY(log->textEdit()->textInteractionFlags() & Qt::TextSelectableByMouse);
    }
};

QTEST_MAIN(TestGuiLog)
#include "test_gui_log.moc"
