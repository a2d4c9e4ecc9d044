#include "app/TLang.h"
#include "support/TestFiles.h"
#include "ui/TDialogHexView.h"
#include "ui/TWgtHexView.h"

#include <QScrollBar>
#include <QTemporaryDir>
#include <QtTest>

class TestGuiHexView : public QObject {
    Q_OBJECT
    QTemporaryDir dir;

    QString write(const QString& name, const QByteArray& bytes) {
        return TestFiles::writeIn(dir, name, bytes);
    }

private slots:
    void initTestCase() { Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng")); }

    void rowsShowAddressBytesAndText() {
        TWgtHexView view;
        view.setData(QByteArray("Tarvelix\x00\x7f\xff", 11) + QByteArray(16, 'a') + "z");
        QCOMPARE(view.rowCount(), 2);
        QCOMPARE(view.rowText(0),
                 QString("00000000  54 61 72 76 65 6C 69 78  00 7F FF 61 61 61 61 61  |Tarvelix...aaaaa|"));
        QCOMPARE(view.rowText(1), QString("00000010  61 61 61 61 61 61 61 61  61 61 61 7A") +
                                      QString(14, ' ') + QString("|aaaaaaaaaaaz|"));
    }

    void hexFileGapsAreErasedBytes() {
        // Two records with a gap between them, then the end record.
        const QString file = write("gap.hex", ":020000000102FB\n:020004000304F3\n:00000001FF\n");
        TDialogHexView dlg;
        QVERIFY(dlg.loadFile(file));
        QCOMPARE(dlg.view()->getData().toHex(), QByteArray("0102ffff0304"));
    }

    void unreadableFileIsReported() {
        const QString file = dir.filePath("missing.bin");
        TDialogHexView dlg;
        QVERIFY(!dlg.loadFile(file));
        QVERIFY(dlg.getErrorText().startsWith(QString("The data file \"%1\" could not be read: ").arg(file)));
    }

    void largeImagePaintsOnlyVisibleRows() {
        const QString file = write("big.bin", QByteArray(16 * 1024 * 1024, '\x5a'));
        TDialogHexView dlg;
        QVERIFY(dlg.loadFile(file));
        dlg.resize(760, 560);
        dlg.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dlg));
        TWgtHexView* view = dlg.view();
        QCOMPARE(view->rowCount(), 1024 * 1024);
        view->scrollToAddress(0xABCDE0);
        QCOMPARE(view->firstVisibleRow(), 0xABCDE);
        for (int i = 0; i < 50; ++i) {
            view->verticalScrollBar()->setValue(view->verticalScrollBar()->value() + 977);
            view->viewport()->repaint();
        }
        QVERIFY(view->lastPaintedRows() > 5);
        QVERIFY(view->lastPaintedRows() < 60);
        QVERIFY(view->rowText(view->firstVisibleRow()).startsWith("00"));
    }
};

QTEST_MAIN(TestGuiHexView)
#include "test_gui_hexview.moc"
