// The simulator as a program: its fault options, trace, chip selection and life cycle, seen through a
// plain POSIX client on its pseudo-terminal.
#include "support/SimFixture.h"

#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QThread>
#include <QtTest>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace {
QByteArray hex(const char* text) {
    return QByteArray::fromHex(text);
}

class RawClient {
public:
    explicit RawClient(const QString& link) {
        fd = ::open(link.toLocal8Bit().constData(), O_RDWR | O_NOCTTY);
        termios t{};
        if (fd >= 0 && tcgetattr(fd, &t) == 0) {
            cfmakeraw(&t);
            tcsetattr(fd, TCSANOW, &t);
        }
    }
    ~RawClient() {
        if (fd >= 0) ::close(fd);
    }
    bool isOpen() const { return fd >= 0; }
    bool send(const QByteArray& frame) { return write(fd, frame.constData(), frame.size()) == frame.size(); }
    // Reads until count bytes arrived, the time is up or the line ends (hungUp then tells).
    QByteArray read(int count, int ms) {
        QByteArray got;
        QElapsedTimer t;
        t.start();
        while (got.size() < count && t.elapsed() < ms) {
            pollfd p{fd, POLLIN, 0};
            if (poll(&p, 1, static_cast<int>(ms - t.elapsed())) <= 0) break;
            char buf[512];
            const ssize_t n = ::read(fd, buf, sizeof buf);
            if (n <= 0) {
                hungUp = true;
                break;
            }
            got.append(buf, static_cast<int>(n));
        }
        return got;
    }
    bool hungUp = false;

private:
    int fd = -1;
};

const QByteArray ask80 = hex("C0800000C0");
const QByteArray reply80 = hex("C0800200010AB3");
} // namespace

class TestSimFaults : public QObject {
    Q_OBJECT
    SimFixture sim;

private slots:
    void cleanup() { sim.stop(); }

    void noiseBeforeEachReply() {
        QVERIFY(sim.start({"--noise", "5"}));
        RawClient c(sim.link());
        for (int i = 0; i < 2; ++i) {
            QVERIFY(c.send(ask80));
            QCOMPARE(c.read(12, 1000), hex("5555555555") + reply80);
        }
    }

    void corruptEveryKthReply() {
        QVERIFY(sim.start({"--corrupt", "3"}));
        RawClient c(sim.link());
        for (int i = 1; i <= 4; ++i) {
            QVERIFY(c.send(ask80));
            QCOMPARE(c.read(7, 1000), i == 3 ? hex("C0800200010AB4") : reply80);
        }
    }

    void silentAfterKReplies() {
        QVERIFY(sim.start({"--silent-after", "2"}));
        RawClient c(sim.link());
        for (int i = 0; i < 2; ++i) {
            QVERIFY(c.send(ask80));
            QCOMPARE(c.read(7, 1000), reply80);
        }
        QVERIFY(c.send(ask80));
        QCOMPARE(c.read(1, 300), QByteArray());
    }

    void delayBeforeEachReply() {
        QVERIFY(sim.start({"--delay-ms", "200"}));
        RawClient c(sim.link());
        QElapsedTimer t;
        t.start();
        QVERIFY(c.send(ask80));
        QCOMPARE(c.read(7, 2000), reply80);
        QVERIFY(t.elapsed() >= 190);
    }

    void forcedErrorAndInterfaceCode() {
        QVERIFY(sim.start({"--error", "0x83:9", "--error", "5:300", "--interface", "0x0102"}));
        RawClient c(sim.link());
        QVERIFY(c.send(ask80));
        QCOMPARE(c.read(7, 1000), hex("C080020002 01 BB"));
        QVERIFY(c.send(hex("C0830100 01 BB")));
        QCOMPARE(c.read(7, 1000), hex("C0FF0200 0900 36"));
        QVERIFY(c.send(hex("C0050000 3B")));
        QCOMPARE(c.read(7, 1000), hex("C0FF0200 2C01 12"));
        QVERIFY(c.send(hex("C0830100 01 BC"))); // a bad frame is a bad frame, forced error or not
        QCOMPARE(c.read(7, 1000), hex("C0FF0200 0100 3E"));
    }

    void unplugAfterKReplies() {
        QVERIFY(sim.start({"--unplug-after", "1"}));
        RawClient c(sim.link());
        QVERIFY(c.send(ask80));
        QCOMPARE(c.read(7, 1000), reply80);
        QVERIFY(c.send(ask80));
        QCOMPARE(c.read(7, 1000), QByteArray());
        QVERIFY(c.hungUp);
        QVERIFY(sim.process().waitForFinished(3000));
        QCOMPARE(sim.process().exitCode(), 0);
        QVERIFY(sim.process().readAllStandardOutput().endsWith("unplugged\n"));
        QVERIFY(!QFileInfo(sim.link()).isSymLink());
    }

    void traceOfEveryFrame() {
        QVERIFY(sim.start({"--trace", sim.path("t.txt")}));
        {
            RawClient c(sim.link());
            QVERIFY(c.send(hex("AAC0800000C0")));
            QCOMPARE(c.read(7, 1000), reply80);
        }
        sim.stop();
        QFile f(sim.path("t.txt"));
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QStringList lines = QString::fromLatin1(f.readAll()).split('\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 2);
        const QRegularExpression stamp("^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3} ");
        QVERIFY(stamp.match(lines.at(0)).hasMatch());
        QVERIFY(lines.at(0).endsWith(" > C0 80 00 00 C0"));
        QVERIFY(lines.at(1).endsWith(" < C0 80 02 00 01 0A B3"));
    }

    void chipFromTheDeviceFolder() {
        QDir().mkpath(sim.path("dev"));
        QFile lst(sim.path("dev/devices.lst")), desc(sim.path("dev/e.dev"));
        QVERIFY(lst.open(QIODevice::WriteOnly) && desc.open(QIODevice::WriteOnly));
        lst.write("24C02=e.dev\n");
        desc.write("gui_type=s|Dev24\n");
        lst.close();
        desc.close();
        QVERIFY(sim.start({"--chip", "24C02", "--devices", sim.path("dev")}));
        RawClient c(sim.link());
        QVERIFY(c.send(hex("C0840000BC")));
        QCOMPARE(c.read(5, 1000), hex("C0840000BC"));
        QVERIFY(c.send(hex("C0040200 A000 9A"))); // nobody acknowledges on an empty I2C bus
        QCOMPARE(c.read(7, 1000), hex("C0FF0200 0500 3A"));
    }

    void refusesBadStarts() {
        QVERIFY(!sim.start({"--chip", "NoSuchChip", "--devices", sim.path("none")}));
        QCOMPARE(sim.process().exitCode(), 2);
        QVERIFY(sim.errorOutput().contains("cannot read"));
        QVERIFY(!sim.start({"--noise", "-1"}));
        QVERIFY(sim.errorOutput().contains("bad value for --noise: -1"));
        QVERIFY(!sim.start({"--colour", "red"}));
        QVERIFY(sim.errorOutput().contains("unknown option --colour"));
    }

    void leavesWithItsParent() {
        const QString link = sim.path("orphan");
        QProcess shell;
        shell.start(
            "sh",
            {"-c",
             QString("'%1' --link '%2' --exit-with-parent & sleep 0.5").arg(SimFixture::program(), link)});
        QVERIFY(shell.waitForFinished(5000));
        QDeadlineTimer deadline(3000);
        while (QFileInfo(link).isSymLink() && !deadline.hasExpired())
            QThread::msleep(10);
        QVERIFY(!QFileInfo(link).isSymLink());
    }

    void stopsCleanlyOnSignal() {
        QVERIFY(sim.start());
        sim.process().waitForReadyRead(1000);
        QCOMPARE(sim.process().readAllStandardOutput(), (sim.link() + "\n").toLocal8Bit());
        sim.stop();
        QCOMPARE(sim.process().exitStatus(), QProcess::NormalExit);
        QCOMPARE(sim.process().exitCode(), 0);
        QVERIFY(!QFileInfo(sim.link()).isSymLink());
    }
};

QTEST_GUILESS_MAIN(TestSimFaults)
#include "test_sim_faults.moc"
