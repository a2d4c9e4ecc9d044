// tarvelix-avr-board: an Arduino Nano running the Tarvelix firmware in simavr, with one chip wired to it,
// on a pseudo-terminal; for tests and benchmarks of the firmware without hardware.
#include "BoardAvrTarget.h"
#include "BoardI2cEeprom.h"
#include "BoardMcu.h"
#include "BoardMicrowire.h"
#include "BoardSerial.h"
#include "BoardSpiFlash.h"
#include "SimDeviceReader.h"
#include "SimPty.h"
#include "SimStopSignal.h"
#include "SimTrace.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

#include <csignal>
#include <memory>
#include <sys/prctl.h>
#include <unistd.h>

namespace {
int fail(const QString& text) {
    QTextStream(stderr) << "tarvelix-avr-board: " << text << "\n";
    return 2;
}

std::unique_ptr<BoardChip> makeChip(avr_t* avr, const QCommandLineParser& args, QString& error) {
    const QString name = args.value("chip");
    if (name.isEmpty()) return nullptr;
    QVariantMap params;
    if (!SimDeviceReader::readChip(args.value("devices"), name, params, error)) return nullptr;
    const QString family = params.value("gui_type").toString();
    if (family == "Dev25") return std::make_unique<BoardSpiFlash>(avr, params, name);
    if (family == "DevAVR8_SPI") return std::make_unique<BoardAvrTarget>(avr, params);
    if (family == "Dev24")
        return std::make_unique<BoardI2cEeprom>(avr, params, args.value("pins").toInt(),
                                                args.value("write-cycle-us").toULong());
    if (family == "Dev93") return std::make_unique<BoardMicrowire>(avr, params);
    error = QStringLiteral("chip %1: the board has no model for the family \"%2\"").arg(name, family);
    return nullptr;
}
} // namespace

int main(int argc, char* argv[]) {
    const pid_t parent = getppid();
    QCoreApplication app(argc, argv);
    QCommandLineParser args;
    args.setApplicationDescription(
        "An Arduino Nano with the Tarvelix firmware, simulated, on a pseudo-terminal.");
    args.addHelpOption();
    args.addOptions({
        {"link", "Symbolic link to the terminal.", "PATH", "/tmp/tarvelix-board"},
        {"firmware", "The firmware's ELF file.", "ELF",
         QCoreApplication::applicationDirPath() + "/firmware/tarvelix-nano.elf"},
        {"chip", "The chip wired to the board.", "NAME"},
        {"devices", "The device folder with devices.lst.", "DIR"},
        {"image", "Chip contents, loaded at the start and written at the end.", "FILE"},
        {"trace", "Every request (>) and reply (<) frame as a line of hex.", "FILE"},
        {"pins", "Address pins strapped on a 24-series chip.", "N", "0"},
        {"write-cycle-us", "Write cycle of a 24-series chip.", "US", "5000"},
        {"exit-with-parent", "End when the parent process ends."},
    });
    args.process(app);

    BoardMcu mcu;
    QString error;
    if (!mcu.load(args.value("firmware"), error)) return fail(error);
    std::unique_ptr<BoardChip> chip = makeChip(mcu.avr(), args, error);
    if (!error.isEmpty()) return fail(error);
    if (chip && !chip->loadImage(args.value("image"), error)) return fail(error);
    SimTrace trace;
    if (args.isSet("trace") && !trace.open(args.value("trace")))
        return fail("cannot write " + args.value("trace"));
    if (!SimStopSignal::install()) return fail("cannot install the signal handlers");
    if (args.isSet("exit-with-parent") && (prctl(PR_SET_PDEATHSIG, SIGTERM) != 0 || getppid() != parent))
        return 0;
    SimPty pty;
    if (!pty.open(args.value("link"), error)) return fail(error);
    QTextStream(stdout) << args.value("link") << "\n" << Qt::flush;

    BoardSerial serial(mcu.avr(), pty.master(), trace);
    const BoardMcu::End end = mcu.run(serial, pty.master(), SimStopSignal::readFd());
    pty.close();
    if (chip && !chip->saveImage(args.value("image"), error)) return fail(error);
    QTextStream(stdout) << QStringLiteral("simulated %1 s\n").arg(mcu.simulatedSeconds(), 0, 'f', 3)
                        << Qt::flush;
    if (end == BoardMcu::End::Crashed) return fail("the firmware stopped");
    return end == BoardMcu::End::Failed ? fail("the pseudo-terminal failed") : 0;
}
