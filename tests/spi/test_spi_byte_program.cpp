#include "support/WorkerFixture.h"

#include <QtTest>

// A part whose program instruction writes one byte (SST25VF016B: byte program or AAI, no page
// program) in the simulator, which like the real part takes the first byte of a longer burst and
// ignores the rest: the catalogue's page of one byte makes the family send one byte per instruction.
class TestSpiByteProgram : public QObject {
    Q_OBJECT

    static QString cmd(const QString& code, const QString& params) {
        return QStringLiteral(R"({"status": "1", "cmd": "%1", %2})").arg(code, params);
    }
    static QString fileCmd(const QString& code, const QString& file) {
        return cmd(code, QStringLiteral(R"("file": "%1", "format": "bin", "addr_file": "0", )"
                                        R"("addr_device": "65536", "count": "65536")")
                             .arg(file));
    }

private slots:
    void fileOf64KiBReadsBackEqual() {
        WorkerFixture w;
        QByteArray data(65536, 0);
        for (int i = 0; i < data.size(); ++i)
            data[i] = char((i * 7 + (i >> 8)) & 0xFF);
        QFile in(w.dir.filePath("in.bin"));
        QVERIFY(in.open(QIODevice::WriteOnly) && in.write(data) == data.size());
        in.close();

        SimFixture sim;
        QVERIFY(w.startSim(sim,
                           {"--chip", "SST25VF016B", "--devices",
                            QStringLiteral(TARVELIX_DATA_DIR "/devices"), "--trace", sim.path("trace.txt")}));
        TRunner::Options o;
        o.project = w.writeProject(project(
            {{"Main",
              {R"({"status": "1", "cmd": "set_prog", "prog": "Sim", "alt_enabled": "false", "alt_port": ""})",
               cmd("set_device", R"("device": "SST25VF016B", "file": "spi/SST25VF016B.dev")"),
               fileCmd("file_write", in.fileName()), fileCmd("file_read", w.dir.filePath("out.bin"))}}}));
        QVERIFY2(w.run(o) == 0, qPrintable(w.output));
        sim.stop();

        QFile out(w.dir.filePath("out.bin"));
        QVERIFY(out.open(QIODevice::ReadOnly));
        QCOMPARE(out.readAll(), data);
        // One page program (04, opcode 02) per byte, each with its one byte.
        const QStringList writes =
            WorkerFixture::requests(sim.path("trace.txt")).filter(QRegularExpression("^.. 04 .. .. 02 "));
        QCOMPARE(writes.size(), 65536);
        QVERIFY2(writes.at(1).startsWith(QString("%1 04 05 00 02 01 00 01 %2 ")
                                             .arg(writes.at(1).left(2))
                                             .arg(uchar(data.at(1)), 2, 16, QChar('0'))
                                             .toUpper()),
                 qPrintable(writes.at(1)));
    }
};

QTEST_GUILESS_MAIN(TestSpiByteProgram)
#include "test_spi_byte_program.moc"
