#include "project/TPrjList.h"

#include <QTemporaryDir>
#include <QtTest>

class TestPrjList : public QObject {
    Q_OBJECT

private slots:
    void emptyTreeIsJustTheFrame() {
        QCOMPARE(TPrjList::toData({}),
                 QByteArray("{\n    \"version\": 1,\n    \"list\":\n    [\n    ]\n}\n"));
        QCOMPARE(TSelectPrjList::toData({}), TPrjList::toData({}));
    }

    void threeLevelTreeRoundTrips() {
        TPrjListItem leaf{"leaf", "deep/leaf.prj", false, {}};
        TPrjListItem mid{"mid", "", true, {leaf, {"leaf2", "l2.prj", false, {}}}};
        TPrjListItem top{"top", "", true, {mid, {"p", "p.prj", false, {}}}};
        TPrjListItem second{"second", "s.prj", false, {}};
        const QList<TPrjListItem> tree{top, second};
        const QByteArray expected =
            "{\n    \"version\": 1,\n    \"list\":\n    [\n"
            "        {\"parent\": 0, \"expand\": 1, \"name\": \"top\", \"file\": \"\"},\n"
            "        {\"parent\": 1, \"expand\": 1, \"name\": \"mid\", \"file\": \"\"},\n"
            "        {\"parent\": 2, \"expand\": 0, \"name\": \"leaf\", \"file\": \"deep/leaf.prj\"},\n"
            "        {\"parent\": 2, \"expand\": 0, \"name\": \"leaf2\", \"file\": \"l2.prj\"},\n"
            "        {\"parent\": 1, \"expand\": 0, \"name\": \"p\", \"file\": \"p.prj\"},\n"
            "        {\"parent\": 0, \"expand\": 0, \"name\": \"second\", \"file\": \"s.prj\"}\n"
            "    ]\n}\n";
        QCOMPARE(TPrjList::toData(tree), expected);
        QCOMPARE(TPrjList::toData(tree), expected); // a second save numbers from 1 again
        QTemporaryDir dir;
        const QString file = dir.filePath("list.lst");
        QVERIFY(TPrjList::save(file, tree));
        QCOMPARE(TPrjList::load(file), tree);
    }

    void damagedListsLoseNothingListed() {
        QVERIFY(TPrjList::fromData("not json").isEmpty());
        QVERIFY(TPrjList::load("/no/such/file.lst").isEmpty());
        // A parent that names a later or missing entry puts the entry at the top level.
        const auto tree =
            TPrjList::fromData(R"({"list": [{"parent": 2, "name": "a"}, {"parent": 0, "name": "b"},
                                                          {"parent": 9, "name": "c"}, {"parent": 2, "name": "d"}]})");
        QCOMPARE(tree.size(), 3);
        QCOMPARE(tree.at(0).name, QString("a"));
        QCOMPARE(tree.at(1).children.size(), 1);
        QCOMPARE(tree.at(1).children.at(0).name, QString("d"));
        QCOMPARE(tree.at(2).name, QString("c"));
    }

    void listOfListsRoundTrips() {
        const QList<TSelectPrjListRow> rows{{"Bench", "bench.lst"}, {"Line 2", "/abs/line2.lst"}};
        QCOMPARE(TSelectPrjList::toData(rows),
                 QByteArray("{\n    \"version\": 1,\n    \"list\":\n    [\n"
                            "        {\"name\": \"Bench\", \"file\": \"bench.lst\"},\n"
                            "        {\"name\": \"Line 2\", \"file\": \"/abs/line2.lst\"}\n"
                            "    ]\n}\n"));
        QTemporaryDir dir;
        QVERIFY(TSelectPrjList::save(dir.filePath("sp.lpl"), rows));
        QCOMPARE(TSelectPrjList::load(dir.filePath("sp.lpl")), rows);
        QVERIFY(TSelectPrjList::fromData("[1,2").isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestPrjList)
#include "test_prj_list.moc"
