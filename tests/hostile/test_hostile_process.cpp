#include "support/WorkerFixture.h"

#include <QtTest>

// A "process" command runs beside its project, whichever folder Tarvelix itself was started in.
class TestHostileProcess : public QObject {
    Q_OBJECT

private slots:
    void processStartsInTheProjectFolder() {
        WorkerFixture w;
        QVERIFY(QDir::current().absolutePath() != w.dir.path());
        TRunner::Options o;
        o.allowProcess = true;
        // The script is named relative to the project: it is found only from the project's folder.
        QFile script(w.dir.filePath("where.sh"));
        QVERIFY(script.open(QIODevice::WriteOnly) && script.write("pwd > where.txt\n") > 0);
        script.close();
        o.project = w.writeProject(
            project({{"Main", {R"({"status": "1", "cmd": "process", "file": "sh where.sh"})"}}}));
        QCOMPARE(w.run(o), 0);
        QVERIFY2(w.output.contains(Lang.get(1420).arg(w.dir.path())), qPrintable(w.output));
        QFile where(w.dir.filePath("where.txt"));
        QVERIFY(where.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromLocal8Bit(where.readAll()).trimmed(),
                 QFileInfo(w.dir.path()).canonicalFilePath());
    }
};

QTEST_GUILESS_MAIN(TestHostileProcess)
#include "test_hostile_process.moc"
