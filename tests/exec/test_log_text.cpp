#include "app/TLang.h"
#include "exec/TLogText.h"

#include <QtTest>

class TestLogText : public QObject {
    Q_OBJECT

    const QTime at{9, 5, 7, 42};

private slots:
    void initTestCase() { Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng")); }

    void commandLinesWithAndWithoutTime() {
        using P = TLogPiece;
        const TLogText ms(true, true), sec(true, false), none(false, false);
        QCOMPARE(ms.event(0, "Set Vcc", "3.3 V", at),
                 (QList<P>{{P::Time, "09:05:07.042 "}, {P::Cmd, "Set Vcc"}, {P::Param, " (3.3 V)"}}));
        QCOMPARE(sec.event(0, "Stop", "", at), (QList<P>{{P::Time, "09:05:07 "}, {P::Cmd, "Stop"}}));
        QCOMPARE(none.event(0, "Stop", "", at), (QList<P>{{P::Cmd, "Stop"}}));
        // Continuation lines line up under the text that follows a time stamp.
        QCOMPARE(ms.event(2, "text", "", at), (QList<P>{{P::Text, QString(13, ' ') + "text"}}));
        QCOMPARE(sec.event(4, "CRC-32: CBF43926", "", at),
                 (QList<P>{{P::Result, QString(9, ' ') + "CRC-32: CBF43926"}}));
        QCOMPARE(none.event(4, "r", "", at), (QList<P>{{P::Result, "r"}}));
        QCOMPARE(sec.event(3, "work", "", at), (QList<P>{{P::Work, "work"}}));
        QCOMPARE(sec.event(1, "t", "", at), (QList<P>{{P::Time, "09:05:07 "}, {P::Text, "t"}}));
        QCOMPARE(sec.event(5, Lang.get(391), "", at),
                 (QList<P>{{P::Time, "09:05:07 "}, {P::Success, Lang.get(391)}}));
        QVERIFY(sec.event(7, "x", "y", at).isEmpty());
        QVERIFY(sec.event(9, "x", "y", at).isEmpty());
    }

    // A file name or a programmer's text cannot start a line of its own or drive the terminal.
    void controlCharactersAreShownEscaped() {
        using P = TLogPiece;
        const TLogText log(false, false);
        QCOMPARE(log.event(0, "File Write", "a\nb\x1b[31m\tc", at),
                 (QList<P>{{P::Cmd, "File Write"}, {P::Param, " (a\\nb\\x1B[31m\\tc)"}}));
        QCOMPARE(log.event(0, "x\ry", "", at), (QList<P>{{P::Cmd, "x\\ry"}}));
        // A message keeps its own line breaks and nothing else.
        QCOMPARE(log.event(2, QString("one\ntwo\r\x07") + QChar(0x9B), "", at),
                 (QList<P>{{P::Text, "one\ntwo\\r\\x07\\x9B"}}));
        QCOMPARE(TLogText::escape(QString("a") + QChar(0x2028) + "b\n"), QString("a\\x2028b\\n"));
        QCOMPARE(TLogText::escape("caf\u00e9 \\ ok"), QString("caf\u00e9 \\ ok"));
    }

    void failureIsABlockOfFourLines() {
        const TLogText log(true, false);
        const QString rule(60, '=');
        const auto pieces = log.event(6, "No answer", "", at);
        QCOMPARE(pieces.size(), 2);
        QCOMPARE(pieces.at(1).role, TLogPiece::Failed);
        QCOMPARE(pieces.at(1).text, Lang.get(386) + "\n" + rule + "\nNo answer\n" + rule + "\n");
        QCOMPARE(TLogText::toPlain(pieces), "09:05:07 " + pieces.at(1).text);
        QCOMPARE(pieces.at(1).text.split('\n').size(), 5); // four lines and the final break
    }
};

QTEST_GUILESS_MAIN(TestLogText)
#include "test_log_text.moc"
