#include "app/TLang.h"
#include "devices/TDeviceList.h"
#include "formats/TFormat.h"
#include "project/TCmdCode.h"
#include "support/TestFiles.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

// Description and data files named by someone's project that are devices, pipes or huge: refused with a
// text naming the file, and never read.
class TestHostileFiles : public QObject {
    Q_OBJECT
    QTemporaryDir dir;
    QString fifo;

    QString write(const QString& name, const QByteArray& bytes) {
        return TestFiles::writeIn(dir, name, bytes);
    }

private slots:
    void initTestCase() {
        Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
        fifo = dir.filePath("fifo");
        QCOMPARE(mkfifo(qPrintable(fifo), 0600), 0);
    }

    // "--list" alone used to hang on the FIFO and grow without end on /dev/zero.
    void descriptionThatIsNoFileIsNamedInTheList() {
        const QString ini = write(
            "tarvelix.ini", "[Main]\nLanguage=eng.lng\n[ProgTypeList]\nType0=Simulator, " TARVELIX_DATA_DIR
                            "/progs/sim.cfg\n[ProgNameList]\nName0=0, Sim, /tmp/none, Simulator\n");
        auto config = [](const QString& name, const QString& file) {
            return QStringLiteral(R"({"name": "%1", "commands": [)"
                                  R"({"status": "1", "cmd": "set_prog", "prog": "Sim"},)"
                                  R"({"status": "1", "cmd": "set_device", "device": "X", "file": "%2"}]})")
                .arg(name, file);
        };
        const QString project = write("p.prj", QStringLiteral(R"({"configurations": [%1, %2]})")
                                                   .arg(config("Zero", "/dev/zero"), config("Pipe", fifo))
                                                   .toUtf8());
        QProcess p;
        p.start(QStringLiteral(TARVELIX_BIN_DIR "/tarvelix"), {"--settings", ini, "--list", project});
        // A hang shows as a failure here rather than as a stuck suite.
        QVERIFY(p.waitForFinished(20000));
        const QString out = QString::fromUtf8(p.readAllStandardOutput());
        QCOMPARE(p.exitCode(), 0);
        const QString notSupported = Lang.get(387).arg(CmdCode.getName("set_device"));
        QVERIFY2(out.contains(notSupported + ": " + Lang.get(1410).arg("/dev/zero")), qPrintable(out));
        QVERIFY2(out.contains(notSupported + ": " + Lang.get(1410).arg(fifo)), qPrintable(out));
    }

    void descriptionLimits() {
        QCOMPARE(TDeviceList::checkDescription(dir.filePath("none.dev")),
                 Lang.get(1412).arg(dir.filePath("none.dev")));
        const QString big = write("big.dev", QByteArray(TDeviceList::maxDescriptionSize + 1, '#'));
        QCOMPARE(TDeviceList::checkDescription(big), Lang.get(1411).arg(big, "1 Mbyte"));
        QCOMPARE(
            TDeviceList::checkDescription(write("ok.dev", QByteArray(TDeviceList::maxDescriptionSize, '#'))),
            QString());
    }

    void dataFilesThatAreNoFilesAreRefused() {
        QFile sparse(dir.filePath("huge.bin"));
        QVERIFY(sparse.open(QIODevice::WriteOnly) && sparse.resize(IFormat::maxFileSize + 1));
        sparse.close();
        const QList<QPair<QString, QString>> cases{
            {"/dev/zero", Lang.get(1410).arg("/dev/zero")},
            {fifo, Lang.get(1410).arg(fifo)},
            {dir.path(), Lang.get(1410).arg(dir.path())},
            {sparse.fileName(), Lang.get(1411).arg(sparse.fileName(), "256 Mbyte")}};
        for (const auto& c : cases)
            for (const char* format : {"bin", "hex", "bin+"}) {
                TFormat data(format, c.first, 0, 0, 0xFFFF, 0x1000);
                QVERIFY2(!data.open(QString(format) == "bin+" ? FormatModeWrite : FormatModeRead), format);
                QCOMPARE(data.getErrorText(), c.second);
            }
    }
};

QTEST_GUILESS_MAIN(TestHostileFiles)
#include "test_hostile_files.moc"
