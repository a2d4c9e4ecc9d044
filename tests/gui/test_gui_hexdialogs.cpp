#include "app/TLang.h"
#include "misc/THexBuffer.h"
#include "support/TestBytes.h"
#include "ui/TDialogHexCRC.h"
#include "ui/TDialogHexFill.h"
#include "ui/TDialogHexFind.h"
#include "ui/TDialogHexGoTo.h"
#include "ui/TFormCmd.h"
#include "ui/TWgtHexEdit.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

namespace {
void type(QLineEdit* line, const QString& text) {
    QVERIFY(line);
    line->selectAll();
    if (text.isEmpty())
        QTest::keyClick(line, Qt::Key_Delete);
    else
        QTest::keyClicks(line, text);
}

QString shown(const QDialog& dlg) {
    const QLabel* error = dlg.findChild<QLabel*>("error");
    return error && !error->isHidden() ? error->text() : QString();
}

const QString kNumberRule = "must be a number from %1 to %2 (typed as 0x1F00, 32768, 32K or 1M)";
} // namespace

class TestGuiHexDialogs : public QObject {
    Q_OBJECT
    THexBuffer buffer;
    TWgtHexEdit edit;

private slots:
    void initTestCase() { Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng")); }

    void init() {
        QByteArray image = countingBytes(256).repeated(256); // 64 KiB at 0x8000
        image.replace(0x1234, 4, "\xDE\xAD\xBE\xEF");
        buffer.setData(image, 0x8000);
        edit.setBuffer(&buffer);
        edit.resize(760, 300);
    }

    void goToTakesDeviceAddressesInEveryNotation() {
        for (const auto& [typed, offset] : QList<QPair<QString, qint64>>{
                 {"0x9F00", 0x1F00}, {"40960", 0x2000}, {"33K", 0x400}, {"17fff", 0xFFFF}}) {
            TDialogHexGoTo dlg(&edit);
            type(dlg.findChild<QLineEdit*>("address"), typed);
            QVERIFY2(dlg.okButton()->isEnabled(), qPrintable(typed));
            dlg.accept();
            QCOMPARE(edit.cursorOffset(), offset);
        }
        TDialogHexGoTo dlg(&edit);
        QLineEdit* address = dlg.findChild<QLineEdit*>("address");
        QCOMPARE(address->text(), QString("0x17FFF")); // starts at the cursor
        for (const QString bad : {"1M", "0x7FFF", "12 34", ""}) {
            type(address, bad);
            QVERIFY(!dlg.okButton()->isEnabled());
            QCOMPARE(address->text(), bad); // kept as typed, framed
            QVERIFY(address->property(TFormCmd::kInvalid).toBool());
            QCOMPARE(shown(dlg), "Address: " + kNumberRule.arg("0x8000", "0x17FFF"));
            dlg.accept(); // Enter on an invalid field does nothing
            QCOMPARE(edit.cursorOffset(), qint64(0xFFFF));
        }
    }

    void fillTakesTheSelectionAndUndoesInOneStep() {
        edit.setSelection(0x10, 0x10);
        TDialogHexFill dlg(&edit);
        QCOMPARE(dlg.findChild<QLineEdit*>("address")->text(), QString("0x8010"));
        QCOMPARE(dlg.findChild<QLineEdit*>("count")->text(), QString("0x10"));
        QCOMPARE(dlg.findChild<QLineEdit*>("pattern")->text(), QString("FF"));
        type(dlg.findChild<QLineEdit*>("count"), "5");
        type(dlg.findChild<QLineEdit*>("pattern"), "de ad be");
        dlg.accept();
        QCOMPARE(buffer.data().mid(0xF, 7).toHex(), QByteArray("0fdeadbedead15"));
        QCOMPARE(edit.selectionCount(), qint64(5));
        buffer.undo();
        QCOMPARE(buffer.data().mid(0xF, 7).toHex(), QByteArray("0f101112131415"));
    }

    void fillRefusesARangePastTheEndAndABadPattern() {
        TDialogHexFill dlg(&edit);
        type(dlg.findChild<QLineEdit*>("address"), "0x17FF0");
        type(dlg.findChild<QLineEdit*>("count"), "32");
        QVERIFY(!dlg.okButton()->isEnabled());
        QCOMPARE(shown(dlg), QString("The range 0x17FF0, 32 bytes lies beyond the end of the data"));
        type(dlg.findChild<QLineEdit*>("count"), "16");
        QVERIFY(dlg.okButton()->isEnabled());
        QLineEdit* pattern = dlg.findChild<QLineEdit*>("pattern");
        type(pattern, "F");
        QVERIFY(!dlg.okButton()->isEnabled());
        QVERIFY(pattern->property(TFormCmd::kInvalid).toBool());
        QCOMPARE(shown(dlg), QString("Pattern (hex bytes): \"F\" is not a list of hexadecimal bytes "
                                     "(\"DE AD BE EF\", \"0xDEAD\")"));
        type(pattern, "");
        QCOMPARE(shown(dlg), QString("Pattern (hex bytes): must not be empty"));
        dlg.accept();
        QVERIFY(!buffer.canUndo());
    }

    void findSelectsMatchesAndSaysWhenThereIsNone() {
        edit.goTo(0x1000);
        {
            TDialogHexFind dlg(&edit);
            type(dlg.findChild<QLineEdit*>("find"), "0xDEAD be");
            dlg.accept();
            QCOMPARE(dlg.result(), int(QDialog::Accepted));
        }
        QCOMPARE(edit.selectionStart(), qint64(0x1234));
        QCOMPARE(edit.selectionCount(), qint64(3));

        // Text: counting bytes hold "ABC" at 0x41 of every 256.
        edit.goTo(0x150);
        TDialogHexFind dlg(&edit);
        QCOMPARE(dlg.findChild<QLineEdit*>("find")->text(), QString("0xDEAD be")); // the last search
        type(dlg.findChild<QLineEdit*>("find"), "ABC");
        QVERIFY(!dlg.okButton()->isEnabled()); // not hex
        dlg.findChild<QComboBox*>("mode")->setCurrentIndex(1);
        QVERIFY(dlg.okButton()->isEnabled());
        dlg.accept();
        QCOMPARE(edit.selectionStart(), qint64(0x241));
        type(dlg.findChild<QLineEdit*>("find"), "ABD");
        dlg.accept();
        QCOMPARE(shown(dlg), QString("\"ABD\" not found from 0x8242 to the end"));
        QCOMPARE(edit.selectionStart(), qint64(0x241)); // unchanged
    }

    void crcOfTheImageAndTheSelection() {
        buffer.setData("xx123456789yy");
        TDialogHexCRC whole(&buffer, 0, 0);
        QCOMPARE(whole.rangeBox()->count(), 1);
        QCOMPARE(whole.resultText(), QString("CRC-32 over 0x00-0x0C (13 bytes): AC64768D")); // as zlib has it
        TDialogHexCRC part(&buffer, 2, 9);
        QCOMPARE(part.resultText(), QString("CRC-32 over 0x02-0x0A (9 bytes): CBF43926"));
        part.modelBox()->setCurrentText("CRC-16/XMODEM");
        QCOMPARE(part.resultText(), QString("CRC-16/XMODEM over 0x02-0x0A (9 bytes): 31C3"));
        QVERIFY(part.modelBox()->count() > 50);
    }
};

QTEST_MAIN(TestGuiHexDialogs)
#include "test_gui_hexdialogs.moc"
