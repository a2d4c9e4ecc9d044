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

    void unknownOptionFails() {
        QProcess* p = run({"--no-such-option"});
        QVERIFY(p->exitCode() != 0);
        QVERIFY(QString::fromUtf8(p->readAll()).contains("no-such-option"));
    }
};

QTEST_GUILESS_MAIN(TestCli)
#include "test_cli.moc"
