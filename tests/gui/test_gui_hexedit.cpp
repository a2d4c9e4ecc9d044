#include "app/TLang.h"
#include "misc/THexBuffer.h"
#include "support/TestBytes.h"
#include "ui/TDialogHexFind.h"
#include "ui/TWgtHexEdit.h"

#include <QAction>
#include <QClipboard>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

class TestGuiHexEdit : public QObject {
    Q_OBJECT
    THexBuffer buffer;
    TWgtHexEdit* edit = nullptr;

private slots:
    void initTestCase() { Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng")); }

    void init() {
        buffer.setData(countingBytes(64), 0x4000);
        edit = new TWgtHexEdit;
        edit->setBuffer(&buffer);
        edit->resize(760, 300);
        edit->show();
        QVERIFY(QTest::qWaitForWindowExposed(edit));
        edit->setFocus();
    }

    void cleanup() { delete edit; }

    void typingOverwritesHexAndText() {
        QTest::keyClicks(edit, "a5");
        QCOMPARE(buffer.data().left(2).toHex(), QByteArray("a501"));
        QCOMPARE(edit->cursorOffset(), qint64(1));
        QTest::keyClicks(edit, "3"); // half a byte: the cursor stays
        QTest::keyClicks(edit, "g"); // not a digit: ignored
        QCOMPARE(buffer.data().at(1), char(0x31));
        QCOMPARE(edit->cursorOffset(), qint64(1));
        QTest::keyClick(edit, Qt::Key_Tab); // to the text column
        QTest::keyClicks(edit, "Hi");
        QCOMPARE(buffer.data().left(4), QByteArray("\xA5Hi\x03"));
        QCOMPARE(edit->rowText(0).left(10), QString("00004000  "));

        QTest::keyClick(edit, Qt::Key_Z, Qt::ControlModifier);
        QTest::keyClick(edit, Qt::Key_Z, Qt::ControlModifier);
        QTest::keyClick(edit, Qt::Key_Z, Qt::ControlModifier); // the half byte
        QCOMPARE(buffer.data().left(4).toHex(), QByteArray("a5010203"));
        QTest::keyClick(edit, Qt::Key_Z, Qt::ControlModifier); // both digits of the first byte at once
        QCOMPARE(buffer.data(), countingBytes(64));
        QTest::keyClick(edit, Qt::Key_Y, Qt::ControlModifier);
        QTest::keyClick(edit, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(buffer.data().left(4).toHex(), QByteArray("a5310203"));
        QVERIFY(buffer.isModified());
    }

    void lastByteTakesBothDigits() {
        edit->goTo(63);
        QTest::keyClicks(edit, "7e9");
        QCOMPARE(buffer.data().right(1).toHex(), QByteArray("9e"));
        QCOMPARE(buffer.size(), qint64(64));
    }

    void shiftKeysAndMouseSelectThenCopy() {
        edit->goTo(0x12);
        for (int i = 0; i < 3; ++i)
            QTest::keyClick(edit, Qt::Key_Right, Qt::ShiftModifier);
        QCOMPARE(edit->selectionStart(), qint64(0x12));
        QCOMPARE(edit->selectionCount(), qint64(4));
        QTest::keyClick(edit, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), QString("12 13 14 15"));
        QTest::keyClick(edit, Qt::Key_Up, Qt::ShiftModifier); // back over the anchor
        QCOMPARE(edit->selectionStart(), qint64(0x05));
        QCOMPARE(edit->selectionCount(), qint64(14));

        // Press on one byte's digits, drag to another's character.
        QTest::mousePress(edit->viewport(), Qt::LeftButton, {}, edit->cellRect(0x21, false).center());
        QCOMPARE(edit->selectionCount(), qint64(0));
        QMouseEvent drag(QEvent::MouseMove, edit->cellRect(0x33, true).center(), Qt::NoButton, Qt::LeftButton,
                         Qt::NoModifier);
        QApplication::sendEvent(edit->viewport(), &drag);
        QCOMPARE(edit->selectionStart(), qint64(0x21));
        QCOMPARE(edit->selectionCount(), qint64(0x13));
        QVERIFY(!edit->cursorInText());
        QTest::keyClick(edit, Qt::Key_Left); // a move without Shift drops the selection
        QCOMPARE(edit->selectionCount(), qint64(0));
        QCOMPARE(edit->cursorOffset(), qint64(0x32));
    }

    void pasteOverwritesAndSaysWhatItCannotTake() {
        QSignalSpy messages(edit, &TWgtHexEdit::message);
        QGuiApplication::clipboard()->setText("de ad BE EF");
        edit->goTo(0x3E);
        QTest::keyClick(edit, Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(buffer.data().right(3).toHex(), QByteArray("3ddead"));
        QCOMPARE(messages.takeFirst().at(0).toString(),
                 QString("Pasted 2 of 4 bytes: the rest lies beyond the end of the image"));
        QGuiApplication::clipboard()->setText("hello");
        edit->goTo(0);
        edit->paste();
        QCOMPARE(buffer.data().left(2).toHex(), QByteArray("0001"));
        QCOMPARE(messages.takeFirst().at(0).toString(),
                 QString("The clipboard holds no hexadecimal bytes (\"DE AD BE EF\")"));
        QTest::keyClick(edit, Qt::Key_Tab); // in the text column text pastes as characters
        edit->paste();
        QCOMPARE(buffer.data().left(6), QByteArray("hello\x05"));
        QCOMPARE(edit->selectionCount(), qint64(5));
    }

    void windowShortcutsDoNotTakeTheEditorsKeys() {
        QWidget window;
        auto* inner = new TWgtHexEdit(&window);
        inner->setBuffer(&buffer);
        QAction undo(&window), copy(&window);
        undo.setShortcut(QKeySequence("Ctrl+Z"));
        copy.setShortcut(QKeySequence("Ctrl+C"));
        window.addAction(&undo);
        window.addAction(&copy);
        QSignalSpy windowUndo(&undo, &QAction::triggered), windowCopy(&copy, &QAction::triggered);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        inner->setFocus();
        QTest::keyClicks(inner, "ff");
        QTest::keyClick(inner, Qt::Key_Z, Qt::ControlModifier);
        QTest::keyClick(inner, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(buffer.data(), countingBytes(64));
        QCOMPARE(QGuiApplication::clipboard()->text(), QString("01"));
        QCOMPARE(windowUndo.count() + windowCopy.count(), 0);
        // Elsewhere in the window the window's keys still work.
        auto* other = new QPushButton(&window);
        other->setFocus();
        QTest::keyClick(other, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(windowUndo.count(), 1);
    }

    void findAgainWithF3() {
        QSignalSpy messages(edit, &TWgtHexEdit::message);
        buffer.setData(QByteArray("abcXYZabcXYZ"));
        edit->goTo(1);
        QTest::keyClick(edit, Qt::Key_F3); // nothing searched yet: nothing happens
        QCOMPARE(edit->cursorOffset(), qint64(1));
        {
            TDialogHexFind dlg(edit);
            dlg.findChild<QLineEdit*>("find")->setText("XYZ");
            dlg.findChild<QComboBox*>("mode")->setCurrentIndex(1);
            dlg.accept();
        }
        QCOMPARE(edit->selectionStart(), qint64(3));
        QTest::keyClick(edit, Qt::Key_F3);
        QCOMPARE(edit->selectionStart(), qint64(9));
        QTest::keyClick(edit, Qt::Key_F3);
        QCOMPARE(messages.takeFirst().at(0).toString(), QString("\"XYZ\" not found from 0x0A to the end"));
        QTest::keyClick(edit, Qt::Key_F3, Qt::ShiftModifier);
        QCOMPARE(edit->selectionStart(), qint64(3));
        QCOMPARE(edit->selectionCount(), qint64(3));
        QVERIFY(messages.isEmpty());
    }

    void goToScrollsALargeImage() {
        buffer.setData(QByteArray(16 * 1024 * 1024, '\x5a'));
        edit->goTo(0xABCDE7);
        const int row = 0xABCDE;
        QVERIFY(edit->firstVisibleRow() <= row);
        QVERIFY(edit->cellRect(0xABCDE7, false).bottom() <= edit->viewport()->height());
        QCOMPARE(edit->cursorOffset(), qint64(0xABCDE7));
        edit->setSelection(0x10, 0x20);
        QCOMPARE(edit->firstVisibleRow(), 0x2);
        QCOMPARE(edit->selectedHex().size(), 0x20 * 3 - 1);
        edit->viewport()->repaint();
        QVERIFY(edit->lastPaintedRows() < 60);
    }
};

QTEST_MAIN(TestGuiHexEdit)
#include "test_gui_hexedit.moc"
