// The packet exchange against the real simulator over a pseudo-terminal.
#include "app/TLang.h"
#include "link/TProg.h"
#include "link/TSerialPort.h"
#include "support/SimFixture.h"

#include <QElapsedTimer>
#include <QFile>
#include <QtTest>

#include <fcntl.h>
#include <thread>
#include <unistd.h>

namespace {
const QByteArray ff(int n) {
    return QByteArray(n, static_cast<char>(0xFF));
}
QByteArray spiRead(int n) {
    return QByteArray(1, static_cast<char>(n & 0xFF)).append(static_cast<char>(n >> 8)).append('\x0B');
}
} // namespace

class TestSerialPort : public QObject {
    Q_OBJECT
    SimFixture sim;

    // Opens the port on the simulator with a short time-out, as set_prog would.
    void openPort(TSerialPort& port, int timeOut = 300) {
        QVERIFY2(port.open(sim.link(), TSerialPort::ReadWrite), qPrintable(port.getErrorText()));
        QVERIFY(port.setBaudRate(115200));
        QVERIFY(port.setDataBits(static_cast<unsigned char>(3)));
        QVERIFY(port.setParity(QString("None")));
        port.setTimeOut(timeOut);
        port.setProtocolParam(64);
    }
    void selectDevice(TSerialPort& port) {
        QByteArray d;
        QVERIFY(port.sendPackage(0x84, d));
    }

private slots:
    void initTestCase() { Lang.loadData(TARVELIX_DATA_DIR "/language/eng.lng"); }
    void cleanup() { sim.stop(); }

    void checkByteOfWorkedFrames() {
        QCOMPARE(TSerialPort::getCRC(QByteArray::fromHex("C0800000"), 4), 0xC0);
        QCOMPARE(TSerialPort::getCRC(QByteArray::fromHex("C0810000"), 4), 0xBF);
        QCOMPARE(TSerialPort::getCRC(QByteArray::fromHex("C0010000"), 4), 0x3F);
        QCOMPARE(TSerialPort::getCRC(QByteArray::fromHex("C0FF02000300"), 6), 0x3C);
        QCOMPARE(TSerialPort::getCRC(QByteArray::fromHex("C0FF02000300"), 0), 0x00);
    }

    void requestBytesAndIdentification() {
        QVERIFY(sim.start({"--trace", sim.path("trace.txt")}));
        TSerialPort port;
        openPort(port);
        QByteArray d;
        QVERIFY(port.sendPackage(0x80, d));
        QCOMPARE(d, QByteArray::fromHex("010A"));
        d.clear();
        QVERIFY(port.sendPackage(0x81, d));
        QCOMPARE(d, QByteArray("Tarvelix programmer simulator 1.0").append('\0'));
        d = QByteArray::fromHex("21");
        QVERIFY(port.sendPackage(0x89, d));
        QVERIFY(d.isEmpty()); // a reply without data empties the payload
        QVERIFY(!port.isTimeOut());
        QVERIFY(port.getErrorText().isEmpty() || port.getErrorText() == "Unknown error");
        sim.stop();
        QFile trace(sim.path("trace.txt"));
        QVERIFY(trace.open(QIODevice::ReadOnly));
        const QList<QByteArray> lines = trace.readAll().split('\n');
        QVERIFY(lines.at(0).endsWith("> C0 80 00 00 C0"));
        QVERIFY(lines.at(1).endsWith("< C0 80 02 00 01 0A B3"));
        QVERIFY(lines.at(4).endsWith("> C0 89 01 00 21 95"));
    }

    void noiseBeforeStartByteIsSkipped() {
        QVERIFY(sim.start({"--noise", "9"}));
        TSerialPort port;
        openPort(port);
        for (int i = 0; i < 3; ++i) {
            QByteArray d;
            QVERIFY(port.sendPackage(0x80, d));
            QCOMPARE(d, QByteArray::fromHex("010A"));
        }
    }

    void replyLengthAtAndAboveTheLimit() {
        QVERIFY(sim.start());
        TSerialPort port;
        openPort(port);
        selectDevice(port);
        QByteArray d = spiRead(64);
        QVERIFY(port.sendPackage(3, d));
        QCOMPARE(d, ff(64));
        d = spiRead(65);
        QVERIFY(!port.sendPackage(3, d));
        QVERIFY(port.isTimeOut());
        QCOMPARE(port.getErrorText(), Lang.get(389));
        QCOMPARE(d, spiRead(65)); // the request stays
        // The unread rest is dropped before the next exchange.
        d = spiRead(1);
        QVERIFY(port.sendPackage(3, d));
        QCOMPARE(d, ff(1));
    }

    void badCheckByteFails() {
        QVERIFY(sim.start({"--corrupt", "2"}));
        TSerialPort port;
        openPort(port);
        QByteArray d;
        QVERIFY(port.sendPackage(0x80, d));
        d.clear();
        QVERIFY(!port.sendPackage(0x80, d));
        QVERIFY(port.isTimeOut());
        QCOMPARE(port.getErrorText(), Lang.get(389));
        QVERIFY(port.sendPackage(0x80, d));
        QVERIFY(!port.isTimeOut());
    }

    void programmerErrorReplies() {
        QVERIFY(sim.start({"--error", "0x83:12"}));
        TSerialPort port;
        openPort(port);
        QByteArray d = QByteArray::fromHex("3C"); // 6.0 V is above the simulator's 5.5 V
        QVERIFY(!port.sendPackage(0x89, d));
        QVERIFY(!port.isTimeOut());
        QCOMPARE(port.getErrorText(), Lang.get(408));
        QCOMPARE(d, QByteArray::fromHex("3C"));
        d = QByteArray::fromHex("01");
        QVERIFY(!port.sendPackage(0x83, d));
        QVERIFY(!port.isTimeOut());
        QCOMPARE(port.getErrorText(), QString("Programmer error 12: unknown error code"));
        d.clear();
        QVERIFY(!port.sendPackage(0x05, d)); // no device selected yet
        QCOMPARE(port.getErrorText(), Lang.get(409));
    }

    void silentProgrammerTimesOut() {
        QVERIFY(sim.start({"--silent-after", "1"}));
        TSerialPort port;
        openPort(port, 400);
        QByteArray d;
        QVERIFY(port.sendPackage(0x80, d));
        QElapsedTimer t;
        t.start();
        QVERIFY(!port.sendPackage(0x80, d));
        QVERIFY(t.elapsed() >= 390);
        QVERIFY(t.elapsed() < 10000); // one time-out, no hang
        QVERIFY(port.isTimeOut());
        QCOMPARE(port.getErrorText(), Lang.get(389));
    }

    void slowProgrammerWithinTheTimeOut() {
        QVERIFY(sim.start({"--delay-ms", "250"}));
        TSerialPort port;
        openPort(port, 500);
        QByteArray d;
        QVERIFY(port.sendPackage(0x80, d));
        QCOMPARE(d, QByteArray::fromHex("010A"));
    }

    void unpluggedPort() {
        QVERIFY(sim.start({"--unplug-after", "1"}));
        TSerialPort port;
        openPort(port);
        QByteArray d;
        QVERIFY(port.sendPackage(0x80, d));
        QElapsedTimer t;
        t.start();
        QVERIFY(!port.sendPackage(0x80, d));
        QVERIFY(t.elapsed() < 1500);
        QVERIFY(port.isTimeOut());
        QCOMPARE(port.getErrorText(), Lang.get(431));
        QVERIFY(!port.sendPackage(0x80, d));
        QCOMPARE(port.getErrorText(), Lang.get(431));
    }

    // A peer that sends half a reply and goes away: the port says it went away, not "no answer".
    void portVanishingInTheMiddleOfAReply() {
        const int master = posix_openpt(O_RDWR | O_NOCTTY);
        QVERIFY(master >= 0 && grantpt(master) == 0 && unlockpt(master) == 0);
        const QString slave = QString::fromLatin1(ptsname(master));
        std::thread peer([master] {
            char request[5];
            for (size_t got = 0; got < sizeof request;) {
                const ssize_t n = ::read(master, request + got, sizeof request - got);
                if (n <= 0) break;
                got += size_t(n);
            }
            const unsigned char half[] = {0xC0, 0x80, 0x08, 0x00, 0x01, 0x02};
            (void)!::write(master, half, sizeof half);
            ::usleep(50000);
            ::close(master);
        });
        TSerialPort port;
        QVERIFY2(port.open(slave, TSerialPort::ReadWrite), qPrintable(port.getErrorText()));
        port.setTimeOut(2000);
        port.setProtocolParam(64);
        QByteArray d;
        const bool ok = port.sendPackage(0x80, d);
        peer.join();
        QVERIFY(!ok);
        QVERIFY(port.isTimeOut());
        QCOMPARE(port.getErrorText(), Lang.get(431));
    }

    void portThatCannotBeUsed() {
        TSerialPort port;
        QByteArray d;
        QVERIFY(!port.sendPackage(0x80, d)); // never configured
        QVERIFY(port.isTimeOut());
        QCOMPARE(port.getErrorText(), Lang.get(392));
        QVERIFY(!port.open(sim.path("no-such-port"), TSerialPort::ReadWrite));
        QCOMPARE(port.getErrorText(), Lang.get(393));
        if (geteuid() == 0) QSKIP("root opens any file");
        QFile locked(sim.path("locked"));
        QVERIFY(locked.open(QIODevice::WriteOnly));
        locked.close();
        QVERIFY(locked.setPermissions(QFileDevice::Permissions()));
        QVERIFY(!port.open(locked.fileName(), TSerialPort::ReadWrite));
        QCOMPARE(port.getErrorText(), Lang.get(430));
    }

    // The simulator's description must promise exactly what the simulator accepts.
    void descriptionMatchesTheSimulator() {
        QVERIFY(sim.start());
        TProg prog(TARVELIX_DATA_DIR "/progs/sim.cfg");
        TSerialPort port;
        openPort(port);
        QByteArray d;
        QVERIFY(port.sendPackage(0x80, d));
        QCOMPARE(static_cast<unsigned short>(d.at(0) | d.at(1) << 8), prog.getInterface());
        double min = 0, max = 0;
        prog.getVccRange(min, max);
        d = QByteArray(1, static_cast<char>(qRound(max * 10)));
        QVERIFY(port.sendPackage(0x89, d));
        d = QByteArray(1, static_cast<char>(qRound(max * 10) + 1));
        QVERIFY(!port.sendPackage(0x89, d));
        prog.getVppRange(min, max);
        d = QByteArray(1, static_cast<char>(qRound(max * 10)));
        QVERIFY(port.sendPackage(0x8A, d));
        int rmin = 0, rmax = 0;
        prog.getReset(rmin, rmax);
        const short pulses[] = {short(-rmax), short(rmin), short(rmin - 1), short(rmax + 1)};
        for (int i = 0; i < 4; ++i) {
            d = QByteArray(1, static_cast<char>(pulses[i] & 0xFF)).append(static_cast<char>(pulses[i] >> 8));
            QCOMPARE(port.sendPackage(0x86, d), i < 2);
        }
    }

    void portSettersAndLists() {
        TSerialPort port;
        QVERIFY(port.setDataBits(static_cast<unsigned char>(2)));
        QCOMPARE(port.getDataBits(), 7);
        QVERIFY(!port.setDataBits(static_cast<unsigned char>(4)));
        QCOMPARE(port.getDataBits(), 7);
        QVERIFY(port.setParity(static_cast<unsigned char>(1)));
        QCOMPARE(port.getParity(), int(TSerialPort::OddParity));
        QVERIFY(!port.setParity(static_cast<unsigned char>(5)));
        QCOMPARE(port.getParity(), int(TSerialPort::OddParity));
        port.setParity(QString("Mark"));
        QCOMPARE(port.getParity(), int(TSerialPort::MarkParity));
        port.setParity(QString("mark"));
        QCOMPARE(port.getParity(), -1);
        port.setStopBits(static_cast<unsigned char>(1));
        QCOMPARE(port.getStopBits(), int(TSerialPort::OneAndHalfStop));
        port.setStopBits(QString("2"));
        QCOMPARE(port.getStopBits(), int(TSerialPort::TwoStop));
        port.setFlowControl(QString("Software"));
        QCOMPARE(port.getFlowControl(), int(TSerialPort::SoftwareControl));
        port.setFlowControl(QString("Custom"));
        QCOMPARE(port.getFlowControl(), -1);
        QVERIFY(!port.purge(false, false));
        QVERIFY(port.getCTS() && port.getDSR() && port.getRLSD());

        QCOMPARE(TSerialPort::getListBaudRate().size(), 16);
        QCOMPARE(TSerialPort::getListBaudRate().at(7), QString("14400"));
        QCOMPARE(TSerialPort::getListParity(), (QStringList{"None", "Odd", "Even", "Mark", "Space"}));
        QCOMPARE(TSerialPort::getListStopBits(), (QStringList{"1", "1.5", "2"}));
        QCOMPARE(TSerialPort::getListFlowControl(), (QStringList{"None", "Hardware", "Software", "Custom"}));
        QCOMPARE(TSerialPort::getListDataBits(), (QStringList{"5", "6", "7", "8"}));
        QCOMPARE(TSerialPort::getPortFullName("ttyUSB0", "", "USB Serial"), QString("ttyUSB0 (USB Serial)"));
        QCOMPARE(TSerialPort::getPortFullName("ttyUSB0", "FTDI", "FT232R"), QString("ttyUSB0 (FTDI FT232R)"));
        QCOMPARE(TSerialPort::getPortFullName("ttyS0", "FTDI", ""), QString("ttyS0"));
        QCOMPARE(TSerialPort::getPortNameFromFullName("ttyUSB0 (USB Serial)"), QString("ttyUSB0"));
        QCOMPARE(TSerialPort::getPortNameFromFullName("ttyS0"), QString("ttyS0"));
        QCOMPARE(TSerialPort::getPortNameFromFullName("(odd)"), QString("(odd)"));
        QCOMPARE(TSerialPort::LangErrorCode(0), 405);
        QCOMPARE(TSerialPort::LangErrorCode(11), 416);
        QCOMPARE(TSerialPort::LangErrorCode(12), 421);
    }
};

QTEST_GUILESS_MAIN(TestSerialPort)
#include "test_serial_port.moc"
