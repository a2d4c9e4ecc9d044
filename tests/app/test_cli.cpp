#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

// The application's command line, run as a user would.
class TestCli : public QObject {
    Q_OBJECT

    QProcess* run(const QStringList& args) {
        auto* p = new QProcess(this);
        p->setProcessChannelMode(QProcess::MergedChannels);
        p->start(QStringLiteral(TARVELIX_BIN_DIR "/tarvelix"), args);
        p->waitForFinished(20000);
        return p;
    }

private slots:
    void versionNeedsNoDisplay() {
        QProcess* p = run({"--version"});
        QCOMPARE(p->exitCode(), 0);
        QCOMPARE(QString::fromUtf8(p->readAll()).trimmed(), QString("Tarvelix 0.0.3"));
    }

    void helpListsTheOptions() {
        QProcess* p = run({"--help"});
        QCOMPARE(p->exitCode(), 0);
        const QString out = QString::fromUtf8(p->readAll());
        QVERIFY2(out.contains("--settings <FILE>"), qPrintable(out));
        QVERIFY(out.contains("--version"));
    }

    // Where no display can be opened, as on a build server, a wrong argument still gets the usage.
    void wrongArgumentsGiveTheUsageWithoutADisplay() {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        for (const char* key : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            env.remove(key);
        for (const QStringList& args : {QStringList{"--no-such-option"}, QStringList{"--settings"}}) {
            QProcess p;
            p.setProcessEnvironment(env);
            p.start(QStringLiteral(TARVELIX_BIN_DIR "/tarvelix"), args);
            QVERIFY(p.waitForFinished(20000));
            QCOMPARE(p.exitStatus(), QProcess::NormalExit);
            QCOMPARE(p.exitCode(), 2);
            const QString err = QString::fromUtf8(p.readAllStandardError());
            QVERIFY2(err.contains(args.first().mid(2)) && err.contains("Usage:") &&
                         err.contains("--run <PROJECT>"),
                     qPrintable(err));
        }
    }
};

QTEST_GUILESS_MAIN(TestCli)
#include "test_cli.moc"
