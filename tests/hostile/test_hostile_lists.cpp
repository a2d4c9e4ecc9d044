#include "app/TLang.h"
#include "project/TPrjList.h"
#include "support/TestFiles.h"
#include "ui/TWgtPrjList.h"

#include <QDialogButtonBox>
#include <QInputDialog>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

namespace {
using TestFiles::writeFile;

QByteArray readFile(const QString& name) {
    QFile f(name);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}
// A list of one chain of folders, depth levels deep.
QByteArray chain(int depth) {
    QByteArray out = "{\"version\": 1, \"list\": [\n";
    for (int i = 0; i < depth; ++i)
        out += QStringLiteral("{\"parent\": %1, \"expand\": 1, \"name\": \"L%2\", \"file\": \"\"}%3\n")
                   .arg(i)
                   .arg(i + 1)
                   .arg(i + 1 < depth ? "," : "")
                   .toUtf8();
    return out + "]}\n";
}
} // namespace

// Project lists that the list writer could not write back, or that nest without end.
class TestHostileLists : public QObject {
    Q_OBJECT
    QTemporaryDir dir;

private slots:
    void initTestCase() { Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng")); }

    void deepListIsDamagedAndShownEmpty() {
        const QString file = dir.filePath("deep.lst");
        const QByteArray deep = chain(30000);
        writeFile(file, deep);
        TWgtPrjList tree;
        QSignalSpy errors(&tree, &TWgtPrjList::signalError);
        QVERIFY(!tree.loadPrjList(file));
        QCOMPARE(tree.topLevelItemCount(), 0);
        QCOMPARE(errors.count(), 1);
        QCOMPARE(tree.getErrorText(), Lang.get(46).arg(file, Lang.get(1405).arg(TPrjList::maxDepth)));
        QVERIFY(!tree.savePrjList());
        QCOMPARE(readFile(file), deep);
        // The limit itself is a list like any other.
        writeFile(file, chain(TPrjList::maxDepth));
        QVERIFY(tree.loadPrjList(file));
        QCOMPARE(tree.topLevelItemCount(), 1);
    }

    void quotesAreRefusedOnRenameAndNewEntries() {
        const QString file = dir.filePath("names.lst");
        TWgtPrjList tree;
        QVERIFY(tree.loadPrjList(file));
        QVERIFY(tree.addFolder("Folder"));
        const QByteArray saved = readFile(file);
        QSignalSpy errors(&tree, &TWgtPrjList::signalError);
        QVERIFY(!tree.renameCurrent("Bad \"name\""));
        QVERIFY(!tree.addFolder("back\\slash"));
        QVERIFY(!tree.addProject(dir.filePath("tab\there.prj")));
        QCOMPARE(errors.count(), 3);
        QCOMPARE(errors.at(2).at(0).toString(), Lang.get(1404).arg(dir.filePath("tab\there.prj")));
        QCOMPARE(tree.topLevelItem(0)->text(0), QString("Folder"));
        QCOMPARE(readFile(file), saved);
        QVERIFY(tree.loadPrjList(file));
        QCOMPARE(tree.topLevelItemCount(), 1);

        // The list of lists, whose names are edited in place, is guarded the same way.
        QString error;
        QVERIFY(!TSelectPrjList::save(file, {{"Line \"2\"", "l.lst"}}, &error));
        QCOMPARE(error, Lang.get(1406).arg("Line \"2\""));
        QCOMPARE(readFile(file), saved);
    }

    // The rename dialog of the context menu keeps OK disabled while the name holds a quote.
    void renameDialogRefusesAQuote() {
        TWgtPrjList tree;
        QVERIFY(tree.loadPrjList(dir.filePath("dialog.lst")));
        QVERIFY(tree.addFolder("Folder"));
        bool refused = false, accepted = false;
        QTimer::singleShot(0, [&] {
            auto* dialog = qobject_cast<QInputDialog*>(QApplication::activeModalWidget());
            if (!dialog) return;
            QPushButton* ok = dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
            dialog->setTextValue("A \"quoted\" name");
            refused = !ok->isEnabled() && dialog->labelText().contains(Lang.get(1403));
            dialog->setTextValue("Plain");
            accepted = ok->isEnabled();
            dialog->accept();
        });
        QMetaObject::invokeMethod(&tree, "askRename");
        QVERIFY(refused);
        QVERIFY(accepted);
        QCOMPARE(tree.topLevelItem(0)->text(0), QString("Plain"));
    }

    // A list whose names hold escaped quotes is read and shown, but never written over.
    void escapedQuoteInAFileIsShownNotWritten() {
        const QString file = dir.filePath("escaped.lst");
        const QByteArray list = "{\"version\": 1, \"list\": [\n"
                                "{\"parent\": 0, \"expand\": 0, \"name\": \"A \\\"B\\\"\", \"file\": \"\"},\n"
                                "{\"parent\": 1, \"expand\": 0, \"name\": \"C\", \"file\": \"c.prj\"}]}\n";
        writeFile(file, list);
        TWgtPrjList tree;
        QSignalSpy errors(&tree, &TWgtPrjList::signalError);
        QVERIFY(tree.loadPrjList(file));
        QCOMPARE(tree.topLevelItem(0)->text(0), QString("A \"B\""));
        QCOMPARE(errors.count(), 1);
        tree.topLevelItem(0)->setExpanded(true);
        QVERIFY(!tree.savePrjList());
        QCOMPARE(readFile(file), list);
    }
};

QTEST_MAIN(TestHostileLists)
#include "test_hostile_lists.moc"
