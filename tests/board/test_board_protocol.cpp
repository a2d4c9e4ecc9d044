#include "BoardRun.h"
#include "support/ChipKit.h"

#include <QElapsedTimer>
#include <QtTest>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

// The firmware's side of the frame protocol, byte for byte, through the board's terminal: the
// programmer's own commands, every kind of error reply, and the keep-alive bytes of a long erase.
class TestBoardProtocol : public QObject {
    Q_OBJECT

    SimFixture board;
    int fd = -1;

    static QByteArray frame(unsigned char cmd, const QByteArray& payload) {
        return QByteArray::fromHex(ChipKit::frame(cmd, payload).toLatin1());
    }
    static QByteArray error(unsigned short code) {
        return frame(0xFF, QByteArray(1, char(code)).append(char(code >> 8)));
    }
    static QByteArray setDevice(int type, int clock = 1000000, unsigned char byte3 = 0) {
        QByteArray p;
        p.append(char(type)).append(char(0)).append(char(0)).append(char(byte3));
        for (int i = 0; i < 4; ++i)
            p.append(char(clock >> 8 * i));
        return p.append(char(0));
    }

    // Everything that comes back until a whole frame is there (or the time is up).
    QByteArray exchange(const QByteArray& bytes, int timeoutMs = 3000) {
        if (write(fd, bytes.constData(), size_t(bytes.size())) != bytes.size()) return "write failed";
        QByteArray in;
        QElapsedTimer t;
        t.start();
        while (t.elapsed() < timeoutMs) {
            pollfd p{fd, POLLIN, 0};
            if (poll(&p, 1, 50) > 0) {
                char buf[2048];
                const ssize_t n = read(fd, buf, sizeof buf);
                if (n > 0) in.append(buf, int(n));
            }
            const int s = in.indexOf(char(0xC0));
            if (s >= 0 && in.size() >= s + 4 &&
                in.size() >= s + 5 + (uchar(in.at(s + 2)) | uchar(in.at(s + 3)) << 8))
                break;
        }
        return in;
    }

    bool open(const QStringList& options) {
        if (fd >= 0) ::close(fd);
        board.setProgram(BoardRun::board());
        if (!board.start(options)) return false;
        fd = ::open(board.link().toLocal8Bit().constData(), O_RDWR | O_NOCTTY);
        termios t{};
        tcgetattr(fd, &t);
        cfmakeraw(&t);
        tcsetattr(fd, TCSANOW, &t);
        return fd >= 0;
    }

private slots:
    void cleanup() {
        if (fd >= 0) ::close(fd);
        fd = -1;
        board.stop();
    }

    void ownCommands() {
        QVERIFY(open({}));
        QCOMPARE(exchange(frame(0x80, {})), frame(0x80, QByteArray::fromHex("100A")));
        QCOMPARE(exchange(frame(0x81, {})), frame(0x81, QByteArray("Tarvelix Nano programmer 1.0", 29)));
        // Noise ahead of the start byte is skipped, as the host does with replies.
        QCOMPARE(exchange(QByteArray::fromHex("0055AA") + frame(0x83, QByteArray(1, 1))), frame(0x83, {}));
        QCOMPARE(exchange(frame(0x86, QByteArray::fromHex("F6FF"))), frame(0x86, {})); // -10 ms
        QCOMPARE(exchange(frame(0x88, QByteArray::fromHex("0104050302"))), error(3));  // no pull-downs
        QCOMPARE(exchange(frame(0x88, QByteArray::fromHex("01040503"))), frame(0x88, {}));
        QCOMPARE(exchange(frame(0x85, {})), frame(0x85, {}));
    }

    void errorReplies() {
        QVERIFY(open({}));
        QByteArray bad = frame(0x80, {});
        bad[4] = char(bad.at(4) + 1);
        QCOMPARE(exchange(bad), error(1));
        QCOMPARE(exchange(frame(0x99, {})), error(0));
        QCOMPARE(exchange(frame(0x03, QByteArray::fromHex("0100AB"))), error(4)); // nothing selected yet
        QCOMPARE(exchange(frame(0x89, QByteArray(1, 33))), error(10));            // no programmable supply
        QCOMPARE(exchange(frame(0x87, QByteArray(6, 0))), error(10));             // nor a generator
        QCOMPARE(exchange(frame(0x83, QByteArray(1, 4))), error(3));
        QCOMPARE(exchange(frame(0x84, setDevice(9))), error(10));
        QCOMPARE(exchange(frame(0x84, QByteArray(3, 0))), error(2));
        // A request longer than the buffer is read to its end and refused; the next one is answered.
        QCOMPARE(exchange(frame(0x88, QByteArray(1033, 1))), error(2));
        QCOMPARE(exchange(frame(0x80, {})), frame(0x80, QByteArray::fromHex("100A")));
    }

    // Without a part on the bus, each family says so instead of inventing data.
    void emptyBoard() {
        QVERIFY(open({}));
        QCOMPARE(exchange(frame(0x84, setDevice(1, 100000))), frame(0x84, {}));
        QCOMPARE(exchange(frame(0x05, QByteArray::fromHex("0400A000"))), error(5));
        QCOMPARE(exchange(frame(0x04, QByteArray::fromHex("A00012"))), error(5));
        QCOMPARE(exchange(frame(0x84, setDevice(3, 125000))), error(5)); // no AVR takes the enable
        QCOMPARE(exchange(frame(0x84, {})), frame(0x84, {}));
        QCOMPARE(exchange(frame(0x03, {})), error(5)); // no 93-series part shows its dummy bit
        QCOMPARE(exchange(frame(0x84, setDevice(2))), frame(0x84, {}));
        // MISO reads 0 here: the write enable does not show in the status, so nothing is written.
        QCOMPARE(exchange(frame(0x04, QByteArray::fromHex("C7"))), error(7));
    }

    // A chip erase keeps the part busy longer than the host waits for a byte: the firmware sends
    // keep-alive bytes, which the host skips as it skips any byte before the start byte.
    void longEraseKeepsTheLineAlive() {
        QVERIFY(open({"--chip", "A25L010", "--devices", TARVELIX_DATA_DIR "/devices"}));
        QCOMPARE(exchange(frame(0x84, setDevice(2))), frame(0x84, {}));
        const QByteArray reply = exchange(frame(0x04, QByteArray::fromHex("C7")));
        QVERIFY2(reply.endsWith(frame(0x04, {})), reply.toHex().constData());
        const QByteArray before = reply.left(reply.size() - 5);
        QVERIFY(!before.isEmpty());
        QCOMPARE(before, QByteArray(before.size(), 0x55));
    }
};

QTEST_MAIN(TestBoardProtocol)
#include "test_board_protocol.moc"
