#include "exec/TChipSession.h"

#include "app/TLang.h"
#include "devices/IDevice.h"
#include "devices/TDeviceList.h"
#include "exec/TRunControl.h"
#include "formats/TFormat.h"
#include "formats/TFormatGuess.h"
#include "formats/TSaveAside.h"
#include "misc/TNormCmdParam.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"
#include "project/TDataPrj.h"
#include "project/TPrjBuilder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

enum LangId {
    TextActionFirst = 1854, // the action names, in the order of TChipSession::Action
    TextNoChip = 1868,
    TextNoCommand = 1869,
    TextStopped = 390,
    TextBusy = 1872,
    TextRunName = 1873,
    TextTempWrite = 1874,
    TextTempRead = 1875,
    TextNoProg = 1876,
    TextNotStarted = 1877,
    TextCannotWrite = 1897,
};

// Temporary files hold raw bytes from address 0 of the memory.
const QString kFormat = QStringLiteral("bin");

// A data file the user names: standard Intel HEX for a HEX name, which other tools read alike, else
// raw binary.
QString dataFileFormat(const QString& file) {
    return TFormatGuess::keyOfName(file) == QLatin1String("hex") ? QStringLiteral("ihex") : kFormat;
}

} // namespace

TChipSession::TChipSession(TRunControl* control, QObject* parent) : QObject(parent), control(control) {
    connect(control, &TRunControl::signalEventText, this,
            [this](int id, TCodeExec code, const QString& text, const QString& param) {
                if (id != idCfg) return;
                if (detection) detection->event(code, text, param);
                if (code == ExecFailed) lastError = text;
                emit signalEvent(code, text, param);
            });
    connect(control, &TRunControl::signalEventProc, this, [this](int id, int percent) {
        if (id == idCfg) emit signalProgress(percent);
    });
    connect(control, &TRunControl::signalFinished, this, &TChipSession::onFinished);
}

TChipSession::~TChipSession() {
    if (idCfg < 0) return;
    control->stop(idCfg);
    while (control->isRunning(idCfg))
        control->waitAll();
    dropCfg();
}

void TChipSession::setProg(const QString& name) {
    if (name != progName) doneCmds.clear();
    progName = name;
}

bool TChipSession::setChip(const QString& name) {
    const QHash<QString, QString> list = DeviceList.getDeviceList();
    if (!list.contains(name)) return false;
    if (name != device) doneCmds.clear();
    device = name;
    deviceFile = list.value(name);
    return true;
}

QStringList TChipSession::memories() const {
    return TChipCmds::memories(device.isEmpty() ? nullptr : ProjectData.createDevice(device, deviceFile));
}

QList<TChipSession::Step> TChipSession::stepsOf(Action action, const QString& memory) {
    switch (action) {
    case Detect:
        return {};
    case Erase:
        return {{TChipCmds::Erase, memory}};
    case BlankCheck:
        return {{TChipCmds::BlankCheck, memory}};
    case Read:
    case CompareChip:
        return {{TChipCmds::Read, memory}};
    case Write:
        return {{TChipCmds::Write, memory}};
    case Verify:
        return {{TChipCmds::Verify, memory}};
    case WriteVerify:
        return {{TChipCmds::Write, memory}, {TChipCmds::Verify, memory}};
    }
    return {};
}

bool TChipSession::offers(Action action, const QString& memory) const {
    if (action == Detect) return true;
    if (device.isEmpty()) return false;
    IDevice* dev = ProjectData.createDevice(device, deviceFile);
    // A register is read into the log, not into the buffer.
    if (action == CompareChip && TChipCmds::isRegister(memory)) return false;
    for (const Step& s : stepsOf(action, memory))
        if (TChipCmds::code(dev, s.op, s.memory).isEmpty()) return false;
    return true;
}

bool TChipSession::saveTemp(const QByteArray& data, QString& file) {
    file = temp->filePath(QStringLiteral("buffer-%1.bin").arg(++tempCount));
    QFile f(file);
    if (f.open(QIODevice::WriteOnly) && f.write(data) == data.size() && f.flush()) return true;
    lastError = Lang.get(TextTempWrite).arg(file, f.errorString());
    return false;
}

QString TChipSession::refusal(Action action, const QString& memory) const {
    if (isBusy()) return Lang.get(TextBusy);
    if (progName.isEmpty()) return Lang.get(TextNoProg);
    if (action != Detect && device.isEmpty()) return Lang.get(TextNoChip);
    if (!offers(action, memory)) return Lang.get(TextNoCommand).arg(device, memory);
    return QString();
}

// Reads land in a file of their own; writes and verifies send the buffer from one.
bool TChipSession::prepareFiles(Action action, const QString& memory, const QByteArray& data) {
    currentFile.clear();
    if (TChipCmds::isRegister(memory)) return true;
    if (!temp) temp = std::make_unique<QTemporaryDir>();
    if (action == Read || action == CompareChip)
        currentFile = temp->filePath(QStringLiteral("read-%1.bin").arg(++tempCount));
    if (action == Write || action == Verify || action == WriteVerify) return saveTemp(data, currentFile);
    return true;
}

bool TChipSession::start(Action action, const QString& memory, const QByteArray& data, const QString& value,
                         quint32 base) {
    lastError = refusal(action, memory);
    if (!lastError.isEmpty()) return false;
    current = action;
    currentMemory = memory;
    bufferBase = base;
    bufferSize = data.size();
    dataRead.clear();
    valueRead.clear();
    pending.clear();
    if (!prepareFiles(action, memory, data)) return false;
    detection.reset();
    if (action == Detect) {
        parts.clear();
        detection = std::make_unique<TChipDetect>(progName);
    }
    if (!build(action, memory, currentFile, value)) return false;
    return startRun(Lang.get(TextActionFirst + action));
}

bool TChipSession::build(Action action, const QString& memory, const QString& file, const QString& value) {
    idCfg = ProjectData.newTransientCfg(Lang.get(TextRunName).arg(Lang.get(TextActionFirst + action)));
    if (detection) {
        if (detection->buildNext(ProjectData, idCfg)) return true;
        dropCfg();
        return false;
    }
    TPrjBuilder::addCmd(ProjectData, idCfg, CTagCmdCode::set_prog, {{CTagCmdToolsSetProg::prog, progName}});
    TPrjBuilder::addSetDevice(ProjectData, idCfg, device, deviceFile);
    IDevice* dev = ProjectData.createDevice(device, deviceFile);
    for (const Step& s : stepsOf(action, memory)) {
        Done d{TChipCmds::code(dev, s.op, s.memory), TChipCmds::values(s.op, s.memory, file, kFormat, value),
               !file.isEmpty()};
        if (d.temp) bufferRange(s.op, d.values);
        pending.append({TPrjBuilder::addCmd(ProjectData, idCfg, d.code, d.values), d});
    }
    return true;
}

// The buffer goes to the chip from its own first address; a read fills it from the memory's start.
void TChipSession::bufferRange(TChipCmds::Op op, TData& values) const {
    if (op != TChipCmds::Write && op != TChipCmds::Verify) return;
    values.insert(CTagCmdRWV::addr_device, qint64(bufferBase));
    values.insert(CTagCmdRWV::count, bufferSize);
}

bool TChipSession::startRun(const QString& title) {
    if (control->start(idCfg)) return true;
    dropCfg();
    lastError = Lang.get(TextNotStarted).arg(title);
    return false;
}

void TChipSession::stop() {
    if (idCfg >= 0) control->stop(idCfg);
    detection.reset(); // no further family after a stop
}

void TChipSession::dropCfg() {
    if (idCfg >= 0 && ProjectData.getCfgObject(idCfg)) ProjectData.delCfg(idCfg);
    idCfg = -1;
}

void TChipSession::onFinished(int id, TCodeCfgStatus outcome) {
    if (id != idCfg) return;
    const bool ok = outcome == CfgStatusOk;
    if (outcome == CfgStatusStopped) lastError = Lang.get(TextStopped);
    collect(ok);
    dropCfg();
    // What was read is in memory now, and a buffer once sent is not needed again.
    if (!currentFile.isEmpty()) QFile::remove(currentFile);
    if (detection && detection->wantsMore() && outcome != CfgStatusStopped) {
        build(Detect, QString(), QString(), QString());
        if (idCfg >= 0 && startRun(Lang.get(TextActionFirst + Detect))) return;
    }
    if (detection) {
        parts = detection->found();
        detection.reset();
        // A chip chosen before stays when it is among the parts that answered.
        if (parts.size() == 1)
            setChip(parts.first());
        else if (!parts.contains(device)) {
            device.clear();
            doneCmds.clear();
        }
        emit signalFinished(Detect, !parts.isEmpty());
        return;
    }
    emit signalFinished(current, ok && lastError.isEmpty());
}

// Read while the configuration still exists: a register read keeps its value in its command.
void TChipSession::collect(bool ok) {
    if (!ok || detection) return;
    const bool register_ = TChipCmds::isRegister(currentMemory);
    for (const auto& p : pending)
        if (register_ && p.second.code.endsWith(QLatin1String("_read")))
            valueRead = ProjectData.getCmdData(p.first).value(CTagCmdRWV::data).toString();
    if ((current == Read || current == CompareChip) && !currentFile.isEmpty()) {
        QFile f(currentFile);
        if (!f.open(QIODevice::ReadOnly)) {
            lastError = Lang.get(TextTempRead).arg(currentFile, f.errorString());
            return;
        }
        dataRead = f.readAll();
    }
    for (const auto& p : pending) {
        Done d = p.second;
        if (register_ && d.code.endsWith(QLatin1String("_read")))
            d.values.insert(CTagCmdRWV::data, valueRead);
        // Compared with the chip is, in a configuration, verified against the data file.
        if (current == CompareChip)
            d.code = TChipCmds::code(ProjectData.createDevice(device, deviceFile), TChipCmds::Verify,
                                     currentMemory);
        doneCmds.append(d);
    }
}

int TChipSession::saveAsConfiguration(TDataPrj& prj, const QString& name, const QString& dataFile) const {
    if (doneCmds.isEmpty()) return -1;
    const int id = prj.newCfg(name, QString(), -1);
    TPrjBuilder::addCmd(prj, id, CTagCmdCode::set_prog, {{CTagCmdToolsSetProg::prog, progName}});
    TPrjBuilder::addSetDevice(prj, id, device, deviceFile);
    const QString work = prj.getPrjWorkPath();
    QString file = dataFile;
    if (!work.isEmpty() && !dataFile.isEmpty()) {
        const QString rel = QDir(work).relativeFilePath(dataFile);
        if (!rel.startsWith(QLatin1String(".."))) file = rel;
    }
    for (const Done& d : doneCmds) {
        TData values = d.values;
        if (d.temp) {
            values.insert(CTagCmdRWV::file, file);
            values.insert(CTagCmdRWV::format, dataFileFormat(dataFile));
        }
        TPrjBuilder::addCmd(prj, id, d.code, values);
    }
    return id;
}

bool TChipSession::doneWithBuffer() const {
    for (const Done& d : doneCmds)
        if (d.temp) return true;
    return false;
}

bool TChipSession::saveData(const QByteArray& data, const QString& file) {
    const int chunk = 256;
    TSaveAside aside(file);
    if (!aside.begin(false)) return lastError = aside.getErrorText(), false;
    TFormat out(dataFileFormat(file), aside.path(), 0, 0, qMax(0, data.size() - 1), chunk);
    bool ok = out.open(FormatModeWrite);
    for (int at = 0; ok && at < data.size(); at += chunk)
        ok = out.write(at, data.mid(at, chunk));
    ok = out.close() && ok;
    if (!ok) {
        lastError = Lang.get(TextCannotWrite).arg(file, out.getErrorText());
        return false;
    }
    if (!aside.commit()) return lastError = aside.getErrorText(), false;
    return true;
}
