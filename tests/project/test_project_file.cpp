#include "TestFamily.h"

#include "project/TCmdCode.h"
#include "project/TCtrlProject.h"
#include "project/TDataCfg.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"
#include "support/TestFiles.h"

#include <QRandomGenerator>
#include <QtTest>

class TestProjectFile : public QObject {
    Q_OBJECT

    QTemporaryDir dir;

    QString write(const QString& name, const QByteArray& bytes) {
        return TestFiles::writeIn(dir, name, bytes);
    }
    QByteArray read(const QString& file) {
        QFile f(file);
        f.open(QIODevice::ReadOnly);
        return f.readAll();
    }

private slots:
    void writesTheFixedLayoutWithIdsAsPositions() {
        TDataPrj prj;
        const int a = prj.newCfg("A", "First", -1), b = prj.newCfg("B", "", -1);
        prj.newCfg("C", "", -1);
        prj.newCmd(cmd(a, "set_prog", {{"prog", "progA"}}), -1);
        const int delay = prj.newCmd(cmd(b, "delay", {{"delay", "100"}}), -1);
        prj.newCmd(cmd(a, "set_vcc", {{"vcc", 3.3}}, 0), -1);
        prj.newCmd(cmd(b, "execute", {{"cfg", a}}), -1);
        prj.newCmd(cmd(a, "jamp", {{"to_cmd", delay}}), -1);
        prj.newCmd(cmd(a, "auto_detect", {{"name", "DevAuto"}, {"route", "chipB=1|none=0|"}}), -1);
        prj.movCfg(0, 1); // B, A, C: positions now differ from ids; the command list keeps its order

        const QByteArray expected =
            "{\n"
            "    \"version\": 1,\n"
            "    \"configurations\":\n"
            "    [\n"
            "        {\n"
            "            \"name\": \"B\",\n"
            "            \"description\": \"\",\n"
            "            \"commands\":\n"
            "            [\n"
            "                {\"status\": \"1\", \"cmd\": \"delay\", \"delay\": \"100\"},\n"
            "                {\"status\": \"1\", \"cmd\": \"execute\", \"cfg\": \"1\"}\n"
            "            ]\n"
            "        },\n"
            "        {\n"
            "            \"name\": \"A\",\n"
            "            \"description\": \"First\",\n"
            "            \"commands\":\n"
            "            [\n"
            "                {\"status\": \"1\", \"cmd\": \"set_prog\", \"prog\": \"progA\"},\n"
            "                {\"status\": \"0\", \"cmd\": \"set_vcc\", \"vcc\": \"3.3\"},\n"
            "                {\"status\": \"1\", \"cmd\": \"jamp\", \"to_cmd\": \"1\"},\n"
            "                {\"status\": \"1\", \"cmd\": \"auto_detect\", \"name\": \"DevAuto\", \"route\": "
            "\"chipB=0|none=1\"}\n"
            "            ]\n"
            "        },\n"
            "        {\n"
            "            \"name\": \"C\",\n"
            "            \"description\": \"\",\n"
            "            \"commands\":\n"
            "            [\n"
            "            ]\n"
            "        }\n"
            "    ]\n"
            "}\n";
        TCtrlProject ctrl;
        const QString file = dir.filePath("layout.prj");
        QVERIFY(ctrl.save(file, &prj));
        QCOMPARE(read(file), expected);

        // Reading hands out ids in reading order, so positions become ids again. The jump target was
        // written as an absolute position of the in-memory list (the delay stood at 1); after the reload
        // the command at position 1 is the execute command, and that is the one it designates.
        TDataPrj back;
        QCOMPARE(ctrl.load(file, &back), 0);
        QCOMPARE(back.getCfgListName(), (QStringList{"B", "A", "C"}));
        QCOMPARE(back.getCmdData(1).value("cmd").toString(), QString("execute"));
        QCOMPARE(back.getCmdData(1).value("cfg").toInt(), back.getIdCfgFromNameCfg("A"));
        QCOMPARE(back.getCmdData(4).value("cmd").toString(), QString("jamp"));
        QCOMPARE(back.getCmdData(4).value("to_cmd").toInt(), 1);
        QCOMPARE(back.getCmdData(5).value("route").toString(), QString("chipB=0|none=1"));
        QCOMPARE(back.getCmdData(3).value("status").toInt(), 0);
        QCOMPARE(back.getPrjParam().value("prj_file").toString(), file);
        QCOMPARE(back.getPrjParam().value("work_path").toString(), dir.path());
        QVERIFY(back.getCmdListCfg(back.getIdCfgFromNameCfg("C")).isEmpty());
        QVERIFY(ctrl.save(file, &back));
        QCOMPARE(read(file), expected);
    }

    void everyCommandCodeRoundTrips() {
        TDataPrj prj;
        const int a = prj.newCfg("All", "every code", -1), b = prj.newCfg("Other", "", -1);
        int n = 0;
        for (const QString& code : CmdCode.getCodeList()) {
            TData extra{{"p", QString("v%1").arg(n)}};
            if (code == "jamp")
                extra = {{"to_cmd", 0}};
            else if (code == "execute")
                extra = {{"cfg", b}};
            else if (code == "auto_detect")
                extra = {{"name", "DevAuto"}, {"route", "x=1"}};
            prj.newCmd(cmd(n % 3 ? a : b, code, extra, n % 2), -1);
            ++n;
        }
        TCtrlProject ctrl;
        const QString file = dir.filePath("all.prj");
        QVERIFY(ctrl.save(file, &prj));
        const QByteArray first = read(file);
        TDataPrj back;
        QCOMPARE(ctrl.load(file, &back), 0);
        QCOMPARE(back.getCmdList().size(), CmdCode.getCodeList().size());
        for (int i = 0; i < back.getCmdList().size(); ++i)
            QCOMPARE(back.getIdCmdFromAPosCmd(i), i);
        QVERIFY(ctrl.save(file, &back));
        QCOMPARE(read(file), first);
    }

    void emptyAndOddFilesLoad() {
        TCtrlProject ctrl;
        TDataPrj prj;
        const QString empty = write("empty.prj", "");
        QCOMPARE(ctrl.load(empty, &prj), 0);
        QCOMPARE(prj.getCfgListName(), QStringList{"Config"});
        QCOMPARE(prj.getPrjFileName(), empty);

        prj.clrPrj();
        QCOMPARE(ctrl.load(write("obj.prj", "{}"), &prj), 0);
        QVERIFY(prj.getCfgList().isEmpty());
        QVERIFY(!prj.getPrjFileName().isEmpty());

        // Wrong types: a configurations value that is no array, elements that are no objects, commands
        // that are no array, values that are no strings.
        prj.clrPrj();
        QCOMPARE(ctrl.load(write("types.prj", R"({"configurations": [5, "x", {"name": 7, "commands": {}},
            {"name": "N", "commands": [1, {"status": 1, "cmd": "delay", "delay": true, "extra": "kept"}]}]})"),
                           &prj),
                 0);
        QCOMPARE(prj.getCfgListName(), (QStringList{"", "N"}));
        QCOMPARE(prj.getCmdList().size(), 1);
        const TData c = prj.getCmdData(0);
        QCOMPARE(c.value("status").toInt(), 0); // a number reads as an empty text
        QCOMPARE(c.value("delay").toString(), QString());
        QCOMPARE(c.value("extra").toString(), QString("kept"));

        prj.clrPrj();
        QCOMPARE(ctrl.load(write("arr.prj", R"({"configurations": "none"})"), &prj), 0);
        QVERIFY(prj.getCfgList().isEmpty());
    }

    void damagedFilesGiveTheirResultCodes() {
        TCtrlProject ctrl;
        TDataPrj prj;
        QCOMPARE(ctrl.load(dir.filePath("missing.prj"), &prj), 1);
        QCOMPARE(ctrl.getErrorText(), QString("No such file or directory"));
        QCOMPARE(ctrl.load(write("trunc.prj", R"({"version": 1, "configurations": [ {"name": "A")"), &prj),
                 2);
        QVERIFY(!ctrl.getErrorText().isEmpty());
        QVERIFY(prj.getPrjFileName().isEmpty()); // a failed load does not adopt the file

        // Nothing is escaped on writing: a quote in a name makes a file the reader rejects, so saving
        // refuses it and leaves the file alone.
        prj.clrPrj();
        prj.newCfg("say \"hi\"", "", -1);
        const QString quoted = write("quote.prj", TCtrlProject::project_to_data(&prj));
        TDataPrj back;
        QCOMPARE(ctrl.load(quoted, &back), 2);
        QVERIFY(!ctrl.save(quoted, &prj));
        QVERIFY(!ctrl.getErrorText().isEmpty());
    }

    void mutatedFilesNeverCrash() {
        TDataPrj prj;
        prj.newCfg("A", "d", -1);
        prj.newCfg("B", "", -1);
        for (const char* code : {"set_prog", "delay", "jamp", "execute", "auto_detect", "erase"})
            prj.newCmd(cmd(0, code, {{"to_cmd", 1}, {"cfg", 1}, {"route", "a=1"}, {"prog", "p"}}), -1);
        const QByteArray good = TCtrlProject::project_to_data(&prj);
        QRandomGenerator rng(20261123);
        int counts[3] = {0, 0, 0};
        for (int i = 0; i < 1500; ++i) {
            QByteArray bad = good;
            const int edits = 1 + rng.bounded(4);
            for (int e = 0; e < edits && !bad.isEmpty(); ++e) {
                const int at = rng.bounded(bad.size());
                switch (rng.bounded(4)) {
                case 0:
                    bad[at] = char(rng.bounded(256));
                    break;
                case 1:
                    bad.remove(at, 1 + rng.bounded(20));
                    break;
                case 2:
                    bad.insert(at, "\"{[,:]}"[rng.bounded(7)]);
                    break;
                default:
                    bad.truncate(at);
                    break;
                }
            }
            TCtrlProject ctrl;
            TDataPrj loaded;
            const int r = ctrl.load(write("fuzz.prj", bad), &loaded);
            QVERIFY(r == 0 || r == 2);
            QCOMPARE(r == 2, !ctrl.getErrorText().isEmpty());
            ++counts[r];
            // Whatever loaded is saved so that it loads again, or refused with a reason.
            if (r != 0) continue;
            if (ctrl.save(dir.filePath("fuzz-out.prj"), &loaded)) {
                TDataPrj again;
                QCOMPARE(ctrl.load(dir.filePath("fuzz-out.prj"), &again), 0);
            } else {
                QVERIFY(!ctrl.getErrorText().isEmpty());
            }
        }
        QVERIFY(counts[0] > 50 && counts[2] > 50);
    }

    void failedSaveKeepsThePreviousFile() {
        TDataPrj prj;
        prj.newCfg("A", "", -1);
        TCtrlProject ctrl;
        QVERIFY(!ctrl.save(dir.filePath("no/such/folder/x.prj"), &prj));
        QVERIFY(!ctrl.getErrorText().isEmpty());

        // A target that cannot be replaced (here a folder) leaves what was there untouched.
        QVERIFY(QDir(dir.path()).mkpath("taken.prj/inner"));
        QVERIFY(!ctrl.save(dir.filePath("taken.prj"), &prj));
        QVERIFY(QFileInfo(dir.filePath("taken.prj/inner")).isDir());

        // A successful save leaves no stray temporary files beside the project.
        const QString file = dir.filePath("keep.prj");
        QVERIFY(ctrl.save(file, &prj));
        QVERIFY(ctrl.save(file, &prj));
        QCOMPARE(QDir(dir.path()).entryList({"keep*"}, QDir::Files), QStringList{"keep.prj"});
    }
};

QTEST_GUILESS_MAIN(TestProjectFile)
#include "test_project_file.moc"
