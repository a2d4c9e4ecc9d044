#include "app/TAppData.h"
#include "app/TLang.h"
#include "project/TPrjList.h"
#include "support/TestFiles.h"
#include "ui/TDialogSelectPrjList.h"
#include "ui/TWgtPrjList.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

namespace {
using TestFiles::writeFile;

QByteArray readFile(const QString& name) {
    QFile f(name);
    f.open(QIODevice::ReadOnly);
    return f.readAll();
}
const QByteArray nested =
    "{\n    \"version\": 1,\n    \"list\":\n    [\n"
    "        {\"parent\": 0, \"expand\": 1, \"name\": \"Line A\", \"file\": \"\"},\n"
    "        {\"parent\": 1, \"expand\": 0, \"name\": \"Boards\", \"file\": \"\"},\n"
    "        {\"parent\": 2, \"expand\": 0, \"name\": \"EEPROM\", \"file\": \"a/e.prj\"},\n"
    "        {\"parent\": 1, \"expand\": 0, \"name\": \"Flash\", \"file\": \"f.prj\"},\n"
    "        {\"parent\": 0, \"expand\": 0, \"name\": \"Loose\", \"file\": \"/abs/l.prj\"}\n"
    "    ]\n}\n";
} // namespace

class TestGuiPrjList : public QObject {
    Q_OBJECT
    QTemporaryDir dir;

private slots:
    void initTestCase() { Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng")); }

    void nestedTreeRoundTripsByteForByte() {
        const QString file = dir.filePath("rt.lst");
        writeFile(file, nested);
        TWgtPrjList tree;
        QVERIFY(tree.loadPrjList(file, "Line"));
        QCOMPARE(tree.topLevelItemCount(), 2);
        QTreeWidgetItem* line = tree.topLevelItem(0);
        QVERIFY(line->isExpanded());
        QCOMPARE(line->childCount(), 2);
        QCOMPARE(line->child(0)->child(0)->text(0), QString("EEPROM"));
        QCOMPARE(tree.fileOf(line->child(0)->child(0)), dir.filePath("a/e.prj"));
        QCOMPARE(tree.fileOf(tree.topLevelItem(1)), QString("/abs/l.prj"));
        QCOMPARE(tree.fileOf(line), QString());
        writeFile(file, "");
        QVERIFY(tree.savePrjList());
        QCOMPARE(readFile(file), nested);
        QVERIFY(tree.savePrjList()); // numbering starts again at 1
        QCOMPARE(readFile(file), nested);
    }

    void editsAreWrittenAtOnce() {
        const QString file = dir.filePath("edit.lst");
        TWgtPrjList tree;
        QVERIFY(tree.loadPrjList(file)); // a missing list is a new, empty one
        QTreeWidgetItem* folder = tree.addFolder("Folder");
        tree.addProject(dir.filePath("sub/p.prj"));
        QCOMPARE(folder->childCount(), 1);
        tree.setCurrentItem(folder->child(0));
        tree.renameCurrent("  Renamed ");
        QList<TPrjListItem> expect{{"Folder", "", true, {{"Renamed", "sub/p.prj", false, {}}}}};
        QCOMPARE(TPrjList::load(file), expect);
        tree.removeCurrent();
        expect[0].children.clear();
        QCOMPARE(TPrjList::load(file), expect);
        folder->setExpanded(false);
        QCOMPARE(TPrjList::load(file).first().expand, false);
    }

    void doubleClickOpensOnlyProjects() {
        const QString file = dir.filePath("rt2.lst");
        writeFile(file, nested);
        TWgtPrjList tree;
        tree.loadPrjList(file);
        QSignalSpy spy(&tree, &TWgtPrjList::signalOpenProject);
        emit tree.itemDoubleClicked(tree.topLevelItem(0), 0);
        emit tree.itemDoubleClicked(tree.topLevelItem(0)->child(1), 0);
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.first().first().toString(), dir.filePath("f.prj"));
    }

    void damagedListIsShownEmptyAndNeverWritten() {
        const QString file = dir.filePath("bad.lst");
        const QByteArray damaged = "{\"version\": 1, \"list\": [ {\"parent\": 0,";
        writeFile(file, damaged);
        TWgtPrjList tree;
        QSignalSpy spy(&tree, &TWgtPrjList::signalError);
        QVERIFY(!tree.loadPrjList(file));
        QCOMPARE(tree.topLevelItemCount(), 0);
        QCOMPARE(spy.count(), 1);
        QVERIFY(tree.getErrorText().startsWith(QString("The project list \"%1\" is damaged (").arg(file)));
        tree.addFolder("X");
        QVERIFY(!tree.savePrjList());
        QCOMPARE(readFile(file), damaged);
    }

    void listOfListsRoundTrips() {
        const QString file = dir.filePath("sp.lpl");
        const QByteArray data = "{\n    \"version\": 1,\n    \"list\":\n    [\n"
                                "        {\"name\": \"Line A\", \"file\": \"a.lst\"},\n"
                                "        {\"name\": \"Lab\", \"file\": \"/x/lab.lst\"}\n    ]\n}\n";
        writeFile(file, data);
        TDialogSelectPrjList dlg;
        dlg.loadData(file);
        QCOMPARE(dlg.rows(), (QList<TSelectPrjListRow>{{"Line A", "a.lst"}, {"Lab", "/x/lab.lst"}}));
        QCOMPARE(dlg.currentFile(), QString("a.lst"));
        writeFile(file, "");
        QVERIFY(dlg.saveData(file));
        QCOMPARE(readFile(file), data);
        dlg.addRow("New", "n.lst");
        QCOMPARE(dlg.currentFile(), QString("n.lst"));
        dlg.loadData(dir.filePath("missing.lpl"));
        QCOMPARE(dlg.rows().size(), 0);
    }
};

QTEST_MAIN(TestGuiPrjList)
#include "test_gui_prjlist.moc"
