// Write + verify of a whole part through the Nano firmware on the simulated board: simulated seconds
// (the board's 16 MHz clock), wall seconds, and the time the frames alone take on the serial line.
#include "board/BoardRun.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QRegularExpression>

#include <cstdio>

namespace {
constexpr double Baud = 1000000.0;
constexpr double BitsPerByte = 10.0; // start, 8 data bits, stop

struct Part {
    const char* name;
    const char* file; // in the catalogue
    qint64 size;
    const char* clock; // the set-device clock: a list index (I2C) or Hz (SPI)
};

struct Result {
    int status = -1;
    double wall = 0, simulated = 0;
    qint64 wireBytes = 0;
};

QString fileCmd(const QString& code, const QString& file, qint64 size) {
    return QStringLiteral(R"({"status": "1", "cmd": "%1", "file": "%2", "format": "bin", "addr_file": "0", )"
                          R"("addr_device": "0", "count": "%3"})")
        .arg(code, file)
        .arg(size);
}

Result run(const Part& part) {
    WorkerFixture w;
    AppData.progType.append(BoardRun::nanoType, QStringLiteral(TARVELIX_DATA_DIR "/progs/arduino-nano.cfg"));
    QByteArray data(int(part.size), 0);
    for (int i = 0; i < data.size(); ++i)
        data[i] = char((i * 7 + (i >> 9)) & 0xFF);
    const QString file = w.dir.filePath("data.bin");
    QFile f(file);
    f.open(QIODevice::WriteOnly);
    f.write(data);
    f.close();

    SimFixture board;
    board.setProgram(BoardRun::board());
    Result r;
    if (!board.start(
            {"--chip", part.name, "--devices", TARVELIX_DATA_DIR "/devices", "--trace", board.path("trace")}))
        return r;
    AppData.progName.append(false, "Nano", board.link(), BoardRun::nanoType);
    const QString setDevice =
        QStringLiteral(R"({"status": "1", "cmd": "set_device", "device": "%1", "file": "%2", "clk": "%3"})")
            .arg(part.name, part.file, part.clock);
    TRunner::Options o;
    o.project = w.writeProject(BoardRun::projectOf(
        {setDevice, fileCmd("file_write", file, part.size), fileCmd("file_verify", file, part.size)}));
    QElapsedTimer t;
    t.start();
    r.status = w.run(o);
    r.wall = t.nsecsElapsed() / 1e9;
    board.stop();
    const QString out = QString::fromLocal8Bit(board.process().readAllStandardOutput());
    const QRegularExpressionMatch m = QRegularExpression("simulated ([0-9.]+) s").match(out);
    r.simulated = m.hasMatch() ? m.captured(1).toDouble() : -1;
    for (const QString& frame : BoardRun::traceFrames(board.path("trace")))
        r.wireBytes += (frame.size() - 1) / 3;
    return r;
}
} // namespace

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
    // The fastest clocks of the description: 400 kHz on I2C, 8 MHz on SPI.
    const Part parts[] = {{"24C512", "i2c/24C512.dev", 65536, "1"},
                          {"W25Q80RV", "spi/W25Q80RV.dev", 1 << 20, "8000000"}};
    std::printf(
        "| Part | Size | Frame bytes | Line at 1 Mbaud s | Simulated s | Wall s | Simulated / line |\n");
    std::printf("|---|---|---|---|---|---|---|\n");
    for (const Part& p : parts) {
        const Result r = run(p);
        if (r.status != 0) {
            std::printf("| %s | run failed (%d) |\n", p.name, r.status);
            continue;
        }
        const double line = r.wireBytes * BitsPerByte / Baud;
        std::printf("| %s | %lld KiB | %lld | %.2f | %.2f | %.2f | %.2f |\n", p.name, p.size / 1024,
                    r.wireBytes, line, r.simulated, r.wall, r.simulated / line);
        std::fflush(stdout);
    }
    return 0;
}
