// tarvelix-progsim: a programmer on a pseudo-terminal, for tests, benchmarks and trying the
// application without hardware.
#include "SimChipRegistry.h"
#include "SimDeviceReader.h"
#include "SimEmptySocket.h"
#include "SimOptions.h"
#include "SimProgrammer.h"
#include "SimPty.h"
#include "SimServer.h"
#include "SimStopSignal.h"
#include "SimStreamServer.h"
#include "SimTrace.h"

#include <QCoreApplication>
#include <QTextStream>

#include <csignal>
#include <malloc.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace {
std::unique_ptr<SimChip> makeChip(const SimOptions& o, QString& error) {
    SimChipInfo info{o.chip, {}, o.image};
    SimBus bus = SimBus::SPI;
    if (o.chip.isEmpty()) {
        simBusFromName(o.bus, bus);
        return std::make_unique<SimEmptySocket>(info, bus);
    }
    if (!SimDeviceReader::readChip(o.devices, o.chip, info.params, error)) return nullptr;
    // Socket options a chip model may use, beside its description.
    info.params.insert("sim_pins", o.pins);
    info.params.insert("sim_timing", o.timing);
    info.params.insert("sim_write_cycle_ms", o.writeCycleMs);
    const QString family = info.params.value("gui_type").toString();
    if (SimChipRegistry::contains(family)) return SimChipRegistry::create(family, info);
    if (simBusOfFamily(family, bus)) return std::make_unique<SimEmptySocket>(info, bus);
    error = QStringLiteral("chip %1: no model for the family \"%2\"").arg(o.chip, family);
    return nullptr;
}

using End = SimServer::End;

End serve(const SimOptions& options, SimProgrammer& programmer, SimPty& pty, SimTrace& trace) {
    std::unique_ptr<SimStreamProtocol> stream = SimStreamProtocol::create(options.protocol, programmer);
    if (!stream) return SimServer(options, programmer, pty, trace).run(SimStopSignal::readFd());
    return SimStreamServer(options, *stream, pty, trace).run(SimStopSignal::readFd());
}

int fail(const QString& text) {
    QTextStream(stderr) << "tarvelix-progsim: " << text << "\n";
    return 2;
}
} // namespace

int main(int argc, char* argv[]) {
    const pid_t parent = getppid();
    QCoreApplication app(argc, argv);
    // Frames of 64 KiB come and go on every exchange; returning their memory to the system each time
    // costs page faults that would make the simulator, not the link, the bottleneck.
    mallopt(M_MMAP_THRESHOLD, 16 << 20);
    mallopt(M_TRIM_THRESHOLD, 64 << 20);
    SimOptions options;
    QString error;
    if (!options.parse(QCoreApplication::arguments(), error)) return fail(error + "\n" + SimOptions::usage());
    std::unique_ptr<SimChip> chip = makeChip(options, error);
    if (!chip || !chip->loadImage(error)) return fail(error);
    SimProgrammer programmer(std::move(chip), options.interfaceCode);
    SimTrace trace;
    if (!options.trace.isEmpty() && !trace.open(options.trace)) return fail("cannot write " + options.trace);
    if (!SimStopSignal::install()) return fail("cannot install the signal handlers");
    // The parent may have gone before the request was made; then no signal would ever come.
    if (options.exitWithParent && (prctl(PR_SET_PDEATHSIG, SIGTERM) != 0 || getppid() != parent)) return 0;
    SimPty pty;
    if (!pty.open(options.link, error)) return fail(error);
    QTextStream(stdout) << options.link << "\n" << Qt::flush;

    const End end = serve(options, programmer, pty, trace);
    pty.close();
    if (!programmer.socket().chip().saveImage(error)) return fail(error);
    if (end == End::Unplugged) QTextStream(stdout) << "unplugged\n" << Qt::flush;
    return end == End::Failed ? fail("the pseudo-terminal failed") : 0;
}
