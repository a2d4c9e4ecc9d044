// The simulator's frame layer, programmer commands, socket and description reader, in-process.
#include "SimChipRegistry.h"
#include "SimDeviceReader.h"
#include "SimEmptySocket.h"
#include "SimFrame.h"
#include "SimProgrammer.h"

#include <QTemporaryDir>
#include <QtTest>

namespace {
SimFrame request(unsigned char cmd, const QByteArray& data) {
    SimFrame f;
    f.cmd = cmd;
    f.data = data;
    return f;
}
QByteArray hex(const char* text) {
    return QByteArray::fromHex(text);
}

// A tiny memory chip: enough to check that a registered model receives the socket's packets and that
// --image keeps its contents.
class RamChip : public SimChip {
public:
    explicit RamChip(const SimChipInfo& info) : SimChip(info), mem(16, '\0') {}
    SimReply request(unsigned char cmd, const QByteArray& data) override {
        if (cmd != 4 || data.size() < 1) return SimReply::fail(ErrUnknownCommand);
        mem.replace(data.at(0), data.size() - 1, data.mid(1));
        return SimReply::ok(QByteArray(1, static_cast<char>(clock >> 16)));
    }
    void setClock(unsigned int hz) override { clock = hz; }
    QByteArray* contents() override { return &mem; }
    QByteArray mem;
    unsigned int clock = 0;
};
const SimChipRegistrar ramRegistrar("TestRam",
                                    [](const SimChipInfo& i) { return std::make_unique<RamChip>(i); });
} // namespace

class TestSimParts : public QObject {
    Q_OBJECT

private slots:
    void frameEncoding() {
        QCOMPARE(SimFrameCodec::encode(0x80, {}), hex("C0800000C0"));
        QCOMPARE(SimFrameCodec::encode(0x01, {}), hex("C0010000 3F"));
        QCOMPARE(SimFrameCodec::encodeError(3), hex("C0FF0200 0300 3C"));
        QCOMPARE(SimFrameCodec::encode(0x05, QByteArray(300, 'a')).mid(2, 2), hex("2C01"));
    }

    void frameParsing() {
        SimFrameParser p;
        const QByteArray two = hex("5555C0800000C0") + hex("C0890100 21 95");
        for (char c : two)
            p.feed(&c, 1); // arrives a byte at a time
        SimFrame f;
        QVERIFY(p.next(f));
        QCOMPARE(f.cmd, 0x80);
        QVERIFY(f.checkOk && f.data.isEmpty());
        QCOMPARE(f.raw, hex("C0800000C0"));
        QVERIFY(p.next(f));
        QCOMPARE(f.data, hex("21"));
        QVERIFY(!p.next(f));
        // A start byte inside the data is data; a wrong check byte is flagged, not dropped.
        const QByteArray bad = hex("C0030200C0C0 00");
        p.feed(bad.constData(), bad.size());
        QVERIFY(p.next(f));
        QCOMPARE(f.data, hex("C0C0"));
        QVERIFY(!f.checkOk);
        SimProgrammer prog(std::make_unique<SimEmptySocket>(SimChipInfo(), SimBus::SPI), 7);
        QVERIFY(prog.handle(f).isError);
        QCOMPARE(prog.handle(f).error, ErrBadFrame);
    }

    void programmerCommands() {
        SimProgrammer prog(std::make_unique<SimEmptySocket>(SimChipInfo(), SimBus::SPI), 0x1234);
        QCOMPARE(prog.handle(request(0x80, {})).data, hex("3412"));
        QCOMPARE(prog.handle(request(0x81, {})).data,
                 QByteArray(SimProgrammer::identification()).append('\0'));
        const struct {
            unsigned char cmd;
            const char* data;
            int error; // -1: accepted
        } cases[] = {
            {0x80, "00", ErrLength},
            {0x83, "03", -1},
            {0x83, "04", ErrRange},
            {0x83, "", ErrLength},
            {0x86, "70FE", -1},
            {0x86, "0000", -1},
            {0x86, "0900", ErrRange},
            {0x86, "E903", ErrRange},
            {0x86, "18FC", -1},
            {0x86, "70", ErrLength},
            {0x87, "00127A00 E803", -1},
            {0x87, "01127A00 E803", ErrRange},
            {0x87, "00000000 E903", ErrRange},
            {0x88, "0008", -1},
            {0x88, "09", ErrRange},
            {0x88, "000000000000000000", ErrLength},
            {0x89, "37", -1},
            {0x89, "38", ErrRange},
            {0x8A, "82", -1},
            {0x8A, "83", ErrRange},
            {0x8B, "32 C8000000 01", -1},
            {0x8B, "32 F5010000 00", ErrRange},
            {0x8B, "32 C8000000 02", ErrRange},
            {0x8B, "32 C80000 01", ErrLength},
            {0x8C, "82 6400 01", -1},
            {0x8C, "82 6500 01", ErrRange},
            {0x8C, "83 6400 01", ErrRange},
            {0x8D, "", ErrUnknownCommand},
            {0x05, "", ErrNoDevice},
        };
        for (const auto& c : cases) {
            const SimReply r = prog.handle(request(c.cmd, hex(c.data)));
            QVERIFY2(r.isError == (c.error >= 0) && (c.error < 0 || r.error == c.error),
                     qPrintable(QString("%1 %2").arg(c.cmd, 0, 16).arg(c.data)));
        }
    }

    void emptySocketPerBus() {
        SimProgrammer spi(std::make_unique<SimEmptySocket>(SimChipInfo(), SimBus::SPI), 1);
        QCOMPARE(spi.handle(request(3, hex("0300 9F"))).error, ErrNoDevice);
        spi.handle(request(0x84, hex("0100")));
        QCOMPARE(spi.handle(request(3, hex("0300 9F"))).data, hex("FFFFFF"));
        QVERIFY(!spi.handle(request(4, hex("02 000000 AA"))).isError);
        QVERIFY(!spi.handle(request(2, hex("00127A00"))).isError);
        QCOMPARE(spi.handle(request(2, hex("01127A00"))).error, ErrRange);
        QVERIFY(!spi.handle(request(1, hex("0000 0102"))).isError);
        QCOMPARE(spi.handle(request(1, hex("0000 09"))).error, ErrRange);
        spi.handle(request(0x85, {}));
        QCOMPARE(spi.handle(request(3, hex("0100 9F"))).error, ErrNoDevice); // leave deselects

        SimProgrammer i2c(std::make_unique<SimEmptySocket>(SimChipInfo(), SimBus::I2C), 1);
        i2c.handle(request(0x84, {}));
        QVERIFY(!i2c.handle(request(3, hex("02"))).isError);
        QCOMPARE(i2c.handle(request(4, hex("A0 00 55"))).error, ErrNoAck);
        QCOMPARE(i2c.handle(request(5, hex("0100 A0 00"))).error, ErrNoAck);

        SimProgrammer avr(std::make_unique<SimEmptySocket>(SimChipInfo(), SimBus::AVR), 1);
        avr.handle(request(0x84, {}));
        QCOMPARE(avr.handle(request(3, hex("0000 0400"))).data, hex("FFFFFFFF"));
        QCOMPARE(avr.handle(request(5, hex("1000 0200"))).data, hex("FFFF"));
        QCOMPARE(avr.handle(request(7, hex("00 30000000"))).data, hex("FFFFFFFF"));
        QCOMPARE(avr.handle(request(7, hex("30000000"))).error, ErrLength);
        QVERIFY(!avr.handle(request(6, hex("0000 AA"))).isError);
    }

    void registeredModelAndImage() {
        QTemporaryDir dir;
        const QString image = dir.filePath("ram.bin");
        std::unique_ptr<SimChip> chip = SimChipRegistry::create("TestRam", SimChipInfo{"ram", {}, image});
        QVERIFY(chip);
        QVERIFY(!SimChipRegistry::create("Nothing", SimChipInfo()));
        QString error;
        QVERIFY(chip->loadImage(error)); // no file yet: contents stay
        SimProgrammer prog(std::move(chip), 1);
        prog.handle(request(0x84, {}));
        prog.handle(request(2, hex("00127A00")));
        QCOMPARE(prog.handle(request(4, hex("02 A1A2"))).data, hex("7A"));
        QVERIFY(prog.socket().chip().saveImage(error));
        QFile f(image);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QCOMPARE(f.readAll(), hex("0000A1A2") + QByteArray(12, '\0'));
        RamChip again(SimChipInfo{"ram", {}, image});
        QVERIFY(again.loadImage(error));
        QCOMPARE(again.mem.mid(2, 2), hex("A1A2"));
    }

    void descriptionReader() {
        const QVariantMap p = SimDeviceReader::parseLines(
            {"# comment", "gui_type = s |Dev24", "size=D|8192", "page=D 8192", "mask=x|1F", "odd=q|1",
             "erase_blocks=l|4096", "erase_blocks=l|32768", "info=s| two blanks ", "bits=b|101"});
        QCOMPARE(p.value("gui_type").toString(), QString("Dev24"));
        QCOMPARE(p.value("size").toLongLong(), 8192);
        QVERIFY(!p.contains("page") && !p.contains("odd"));
        QCOMPARE(p.value("mask").toUInt(), 31u);
        QCOMPARE(p.value("bits").toUInt(), 5u);
        QCOMPARE(p.value("erase_blocks").toStringList(), (QStringList{"4096", "32768"}));
        QCOMPARE(p.value("info").toString(), QString(" two blanks "));

        QTemporaryDir dir;
        QFile lst(dir.filePath("devices.lst")), desc(dir.filePath("c.dev"));
        QVERIFY(lst.open(QIODevice::WriteOnly) && desc.open(QIODevice::WriteOnly));
        lst.write("# chips\n24C02=c.dev\n");
        desc.write("gui_type=s|Dev24\nsize=d|256\n");
        lst.close();
        desc.close();
        QVariantMap params;
        QString error;
        QVERIFY(SimDeviceReader::readChip(dir.path(), "24C02", params, error));
        QCOMPARE(params.value("size").toInt(), 256);
        QVERIFY(!SimDeviceReader::readChip(dir.path(), "24C04", params, error));
        QCOMPARE(error, QString("chip 24C04 is not in %1/devices.lst").arg(dir.path()));
    }
};

QTEST_GUILESS_MAIN(TestSimParts)
#include "test_sim_parts.moc"
