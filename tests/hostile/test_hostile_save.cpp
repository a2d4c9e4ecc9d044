#include "support/WorkerFixture.h"

#include "project/TCmdCode.h"
#include "project/TCtrlProject.h"
#include "project/TDataCmd.h"

#include <QtTest>

#include <sys/resource.h>

#include <csignal>

namespace {
QByteArray readFile(const QString& name) {
    QFile f(name);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
}
} // namespace

// Values that the project writer, which prints them verbatim, would turn into other JSON.
class TestHostileSave : public QObject {
    Q_OBJECT
    QTemporaryDir dir;

private slots:
    void initTestCase() { Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng")); }

    // An unchecked delay whose value closes its own object and opens a checked "process" command.
    void injectedProcessIsNeverSavedNorRun() {
        const QString mark = dir.filePath("mark");
        const QByteArray injected =
            "{\"version\": 1, \"configurations\": [{\"name\": \"Main\", \"description\": \"\", \"commands\": "
            "[\n"
            "{\"status\": \"0\", \"cmd\": \"delay\", \"value\": \"100\\\"}, {\\\"status\\\": \\\"1\\\", "
            "\\\"cmd\\\": \\\"process\\\", \\\"file\\\": \\\"/usr/bin/touch " +
            mark.toUtf8() +
            "\"},\n"
            "{\"status\": \"1\", \"cmd\": \"counter\", \"value\": \"0\", \"limit\": \"0\", \"delta\": "
            "\"1\"}]}]}\n";
        WorkerFixture w;
        const QString file = w.writeProject(injected);

        {
            FILE* out = std::tmpfile();
            TRunner runner(out, stderr);
            QCOMPARE(runner.list(file), 0);
            std::rewind(out);
            char buf[4096] = {};
            QVERIFY(std::fread(buf, 1, sizeof buf - 1, out) > 0);
            std::fclose(out);
            QVERIFY2(QString::fromUtf8(buf).contains("  ! " +
                                                     Lang.get(1400).arg(CmdCode.getName("delay"), "value")),
                     buf);
        }

        TRunner::Options o;
        o.project = file;
        o.save = true;
        o.allowProcess = true;
        QCOMPARE(w.run(o), 1);
        QVERIFY2(w.errors.contains(Lang.get(1402).arg("Main").arg(1).arg(CmdCode.getName("delay"), "value")),
                 qPrintable(w.errors));
        QCOMPARE(readFile(file), injected);
        // Run again: still one delay and one counter, nothing started.
        QCOMPARE(w.run(o), 1);
        QVERIFY(!QFile::exists(mark));
        QCOMPARE(readFile(file), injected);
    }

    // A configuration name with a quote (from an edited file) and a parameter key with a line break.
    void namesAndKeysAreCheckedToo() {
        const QString file = dir.filePath("names.prj");
        QFile f(file);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("before");
        f.close();
        ProjectData.clrPrj();
        const int id = ProjectData.newCfg("Odd \"name\"", QString(), -1);
        TCtrlProject ctrl;
        QVERIFY(!ctrl.save(file, &ProjectData));
        QCOMPARE(ctrl.getErrorText(), Lang.get(1401).arg("Odd \"name\""));
        ProjectData.setCfgName(id, "Plain");
        ProjectData.newCmd(TData{{"id_cfg", id}, {"status", "1"}, {"cmd", "stop"}, {"a\nb", "1"}}, -1);
        QVERIFY(!ctrl.save(file, &ProjectData));
        QCOMPARE(ctrl.getErrorText(),
                 Lang.get(1402).arg("Plain").arg(1).arg(CmdCode.getName("stop"), "a\nb"));
        QCOMPARE(readFile(file), QByteArray("before"));
        ProjectData.clrPrj();
    }

    // The system's own reason reaches the user, and the previous file stays whole.
    void osErrorOnSaveIsNamed() {
        const QString file = dir.filePath("big.prj");
        QFile f(file);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("previous");
        f.close();
        ProjectData.clrPrj();
        const int id = ProjectData.newCfg("Main", QString(), -1);
        for (int i = 0; i < 200; ++i)
            ProjectData.newCmd(TData{{"id_cfg", id}, {"status", "1"}, {"cmd", "delay"}, {"value", "100"}},
                               -1);
        rlimit old{};
        getrlimit(RLIMIT_FSIZE, &old);
        rlimit small = old;
        small.rlim_cur = 4096;
        const auto previous = std::signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &small);
        TCtrlProject ctrl;
        const bool saved = ctrl.save(file, &ProjectData);
        setrlimit(RLIMIT_FSIZE, &old);
        std::signal(SIGXFSZ, previous);
        QVERIFY(!saved);
        QCOMPARE(ctrl.getErrorText(), QString::fromLocal8Bit(strerror(EFBIG)));
        QCOMPARE(readFile(file), QByteArray("previous"));
        QCOMPARE(QDir(dir.path()).entryList({"big.prj*"}, QDir::Files | QDir::Hidden),
                 QStringList{"big.prj"});
        ProjectData.clrPrj();
    }
};

QTEST_GUILESS_MAIN(TestHostileSave)
#include "test_hostile_save.moc"
