#include "support/WorkerFixture.h"

#include "misc/dev_misc.h"
#include "project/TCmdCode.h"

#include <QtTest>

#include <climits>

// Address ranges from someone's project whose sums leave 64 bits: every such command is refused before
// anything reaches the chip, with the usual text naming the command.
class TestHostileRanges : public QObject {
    Q_OBJECT
    SimFixture sim;
    int seenFrames = 0;

    static QString cmd(const QString& code, const QList<QPair<QString, QString>>& params) {
        QJsonObject o{{"status", "1"}, {"cmd", code}};
        for (const auto& p : params)
            o.insert(p.first, p.second);
        return QString::fromUtf8(QJsonDocument(o).toJson(QJsonDocument::Compact));
    }

    static QByteArray pattern(int n) {
        QByteArray b(n, 0);
        for (int i = 0; i < n; ++i)
            b[i] = char(i * 13 + (i >> 8));
        return b;
    }

private slots:
    // One simulator for all rows: its image is compared once at the end.
    void initTestCase() {
        Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
        const QByteArray image = pattern(1 << 20);
        QFile imageFile(sim.path("image.bin"));
        QVERIFY(imageFile.open(QIODevice::WriteOnly) && imageFile.write(image) == image.size());
        imageFile.close();
        QVERIFY(sim.start({"--chip", "W25Q80RV", "--devices", QStringLiteral(TARVELIX_DATA_DIR "/devices"),
                           "--trace", sim.path("trace.txt"), "--image", imageFile.fileName()}));
    }

    void wrappingRangeIsRefused_data() {
        QTest::addColumn<QString>("command");
        const QString huge = QString::number(LLONG_MAX - 7);
        auto file = [&](const char* code, const char* name, const QString& count) {
            return cmd(code, {{"file", name},
                              {"format", "bin"},
                              {"addr_file", "0"},
                              {"addr_device", "16"},
                              {"count", count}});
        };
        // (begin + count) * size wraps to a small number; begin * size to the chip's last block.
        QTest::newRow("erase_blocks count") << cmd(
            "erase_blocks", {{"size", "4096"}, {"begin", "0"}, {"count", QString::number(LLONG_MAX / 2)}});
        QTest::newRow("erase_blocks begin")
            << cmd("erase_blocks", {{"size", "4096"}, {"begin", "4503599627370495"}, {"count", "1"}});
        QTest::newRow("test_empty_blocks")
            << cmd("test_empty_blocks", {{"size", "65536"}, {"begin", "1"}, {"count", huge}});
        QTest::newRow("char_write") << cmd("char_write",
                                           {{"addr_device", "16"}, {"fill_char", "0"}, {"count", huge}});
        QTest::newRow("char_verify") << cmd("char_verify",
                                            {{"addr_device", "16"}, {"fill_char", "0"}, {"count", huge}});
        QTest::newRow("data_write") << cmd("data_write", {{"addr_device", huge}, {"data", "0102030405"}});
        QTest::newRow("file_read") << file("file_read", "out.bin", huge);
        QTest::newRow("file_write") << file("file_write", "in.bin", huge);
        QTest::newRow("file_verify") << file("file_verify", "in.bin", huge);
        QTest::newRow("file_write negative count") << file("file_write", "in.bin", "-5");
        QTest::newRow("calc_crc") << cmd("calc_crc", {{"crc_name", "CRC-32"},
                                                      {"file", "in.bin"},
                                                      {"format", "bin"},
                                                      {"addr", "16"},
                                                      {"fill", "255"},
                                                      {"count", huge}});
    }

    void wrappingRangeIsRefused() {
        QFETCH(QString, command);
        WorkerFixture w;
        QFile in(w.dir.filePath("in.bin"));
        QVERIFY(in.open(QIODevice::WriteOnly) && in.write(pattern(4096)) == 4096);
        in.close();
        w.addProgrammer("Sim", sim);
        const QStringList cmds{cmd("set_prog", {{"prog", "Sim"}, {"alt_enabled", "false"}, {"alt_port", ""}}),
                               cmd("set_device", {{"device", "W25Q80RV"}, {"file", "spi/W25Q80RV.dev"}}),
                               command};
        TRunner::Options o;
        o.project = w.writeProject(project({{"Main", cmds}}));
        QCOMPARE(w.run(o), 1);

        const QString code = QJsonDocument::fromJson(command.toUtf8()).object().value("cmd").toString();
        QVERIFY2(w.output.contains(Lang.get(388).arg(CmdCode.getName(code))), qPrintable(w.output));
        // Nothing but the programmer's own packets went out, if any (the check before running refuses
        // the command before the programmer is opened): no device command reached the chip.
        const QStringList frames = WorkerFixture::requests(sim.path("trace.txt"));
        QVERIFY(frames.size() >= seenFrames);
        for (const QString& frame : frames.mid(seenFrames))
            QVERIFY2(frame.split(' ').value(1).toInt(nullptr, 16) > 4, qPrintable(frame));
        seenFrames = frames.size();
        QVERIFY(!QFile::exists(w.dir.filePath("out.bin")));
        QVERIFY(!w.output.contains(
            QRegularExpression("CRC-32: [0-9A-F]{8}$", QRegularExpression::MultilineOption)));
    }

    void chipIsUntouched() {
        sim.stop();
        QFile imageFile(sim.path("image.bin"));
        QVERIFY(imageFile.open(QIODevice::ReadOnly));
        QVERIFY(imageFile.readAll() == pattern(1 << 20));
    }

    // The same values in the one-line views: held at the 64-bit limit, never wrapped round.
    void viewsHoldAtTheLimit() {
        QCOMPARE(TMiscDev::getViewParamRWVChar(16, LLONG_MAX - 7, 0), "0x10..0x7FFFFFFFFFFFFFFF :0x00");
        QCOMPARE(TMiscDev::getLastAddr(LLONG_MIN, -1), LLONG_MIN);
        QCOMPARE(TMiscDev::getProduct(4503599627370495, 4096), LLONG_MAX);
        QCOMPARE(TMiscDev::getProduct(-4503599627370495, 4096), LLONG_MIN);
        // The last byte of a device is inside, one more is not, and a sum past 64 bits never is.
        QVERIFY(TMiscDev::isRangeInside(0xFF000, 0x1000, 0, 0x100000));
        QVERIFY(!TMiscDev::isRangeInside(0xFF000, 0x1001, 0, 0x100000));
        QVERIFY(!TMiscDev::isRangeInside(16, LLONG_MAX - 7, 0, 0x100000));
        QVERIFY(!TMiscDev::isRangeInside(16, 1, LLONG_MAX, LLONG_MAX));
    }
};

QTEST_GUILESS_MAIN(TestHostileRanges)
#include "test_hostile_ranges.moc"
