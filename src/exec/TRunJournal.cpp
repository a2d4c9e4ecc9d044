#include "exec/TRunJournal.h"

#include "app/TAppData.h"
#include "devices/IDevice.h"
#include "exec/TLogText.h"
#include "exec/TRunControl.h"
#include "formats/TCRC.h"
#include "formats/TFormat.h"
#include "misc/dev_misc.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMutex>
#include <QTime>

#include <memory>

namespace {
// Runs of several controllers (and processes) append to the same files.
QMutex appendLock;

QString outcomeText(TCodeCfgStatus outcome) {
    return outcome == CfgStatusOk        ? QStringLiteral("ok")
           : outcome == CfgStatusStopped ? QStringLiteral("stopped")
                                         : QStringLiteral("failed");
}

// Codes that put bytes into the chip; their records say what went in.
bool isWrite(const QString& code) {
    return code.endsWith(QLatin1String("_write")) && !code.startsWith(QLatin1String("security_reg_erase"));
}
} // namespace

TRunJournal::TRunJournal(TRunControl* control, std::function<QString()> dir)
    : QObject(control), folder(std::move(dir)), log(new TLogText(AppData.logShowTime, AppData.logShowMSec)) {
    connect(control, &TRunControl::signalStarted, this, &TRunJournal::slotStarted);
    connect(control, &TRunControl::signalEventText, this, &TRunJournal::slotEventText);
    connect(control, &TRunControl::signalFinished, this, &TRunJournal::slotFinished);
}

TRunJournal::~TRunJournal() {
    delete log;
}

void TRunJournal::slotStarted(int idCfg) {
    if (folder().isEmpty()) return;
    Run run;
    run.start = QDateTime::currentDateTime();
    run.clock.start();
    TLocker lock(ProjectData.getMutex());
    for (TDataCmd* cmd : ProjectData.getCmdListCfg(idCfg)) {
        if (!cmd->getEnable()) continue;
        TData data = cmd->getData();
        IDevice* group = cmd->getGroupObject();
        data.insert(QStringLiteral("view_name"), group ? group->getViewCmdName(data) : cmd->getCmdCode());
        run.checked << data;
        const QString code = cmd->getCmdCode();
        if (code == CTagCmdCode::set_prog && run.programmer.isEmpty()) {
            run.programmer = data.value(CTagCmdToolsSetProg::prog).toString();
            const bool alt = data.value(QStringLiteral("alt_enabled")).toBool();
            run.port = alt ? data.value(QStringLiteral("alt_port")).toString()
                           : AppData.progName.getData(run.programmer).port;
        }
        if (code == CTagCmdCode::set_device) run.chip = data.value(CTagCmdProgSetDevice::device).toString();
    }
    runs.insert(idCfg, run);
}

// A command that started and was followed by another, or by the run's good end, has completed. The
// worker runs the checked commands in order, so each start is found from the last one on (a jump
// wraps around).
void TRunJournal::slotEventText(int idCfg, TCodeExec code, const QString& text, const QString& param) {
    auto it = runs.find(idCfg);
    if (it == runs.end()) return;
    Run& run = *it;
    run.text += TLogText::toPlain(log->event(code, text, param, QTime::currentTime()));
    if (!run.text.isEmpty() && !run.text.endsWith(QLatin1Char('\n'))) run.text += QLatin1Char('\n');
    if (code != ExecCmdStart && code != ExecSuccess) return;
    if (run.current >= 0) run.done << run.current;
    run.current = -1;
    if (code != ExecCmdStart) return;
    for (int step = 0; step < run.checked.size(); ++step) {
        const int i = (run.cursor + step) % run.checked.size();
        if (run.checked.at(i).value(QStringLiteral("view_name")).toString() != text) continue;
        run.current = i;
        run.cursor = i + 1;
        break;
    }
}

void TRunJournal::slotFinished(int idCfg, TCodeCfgStatus outcome) {
    if (!runs.contains(idCfg)) return;
    const Run run = runs.take(idCfg);
    QJsonArray writes;
    for (int i : run.done)
        if (isWrite(run.checked.at(i).value(CTagCmd::cmd).toString()))
            writes.append(written(run.checked.at(i)));
    const QString name = ProjectData.getNameCfgFromIdCfg(idCfg);
    QJsonObject line{{"time", run.start.toString(Qt::ISODateWithMs)},
                     {"project", ProjectData.getPrjFileName()},
                     {"configuration", name},
                     {"programmer", run.programmer},
                     {"port", run.port},
                     {"chip", run.chip},
                     {"result", outcomeText(outcome)},
                     {"duration_s", double(run.clock.elapsed()) / 1000.0},
                     {"written", writes}};
    const QString header = QStringLiteral("==== %1 %2 [%3]\n")
                               .arg(run.start.toString(Qt::ISODate), ProjectData.getPrjFileName(), name);
    append(QString::fromLatin1(textFile), (header + run.text + QLatin1Char('\n')).toUtf8());
    append(QString::fromLatin1(jsonFile), QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n');
}

QJsonObject TRunJournal::written(const TData& cmd) {
    const QString code = cmd.value(CTagCmd::cmd).toString();
    QByteArray bytes;
    qint64 addr = cmd.value(QStringLiteral("addr_device")).toLongLong();
    QJsonObject out{{"command", code}};
    if (code.contains(QLatin1String("file_"))) {
        int id;
        qint64 addrFile, end;
        QString file, format;
        TMiscDev::getCmdParamRWVFile(cmd, id, addrFile, addr, end, file, format);
        out.insert("file", file);
        TFormat data(format, file, addrFile, addr, end, 0x10000);
        if (data.open(FormatModeRead)) {
            for (long long at = addr;;) {
                QByteArray piece;
                if (!data.read(at, piece) || piece.isEmpty()) break;
                bytes += piece;
                at += piece.size();
            }
            data.close();
        }
    } else if (code.contains(QLatin1String("char_"))) {
        bytes = QByteArray(int(cmd.value(QStringLiteral("count")).toLongLong()),
                           char(cmd.value(QStringLiteral("fill_char")).toInt()));
    } else {
        bytes = TMiscDev::getByteArrayFromHex(cmd.value(QStringLiteral("data")).toString());
    }
    std::unique_ptr<ICRC> crc(TCRC::createCRCObject(QStringLiteral("CRC-32")));
    crc->calc(bytes.constData(), bytes.size());
    out.insert("address", addr);
    out.insert("bytes", bytes.size());
    out.insert("crc32", TMiscDev::getHexFromByteArray(crc->getResult()));
    return out;
}

bool TRunJournal::append(const QString& name, const QByteArray& bytes) {
    QMutexLocker lock(&appendLock);
    const QString dir = folder();
    QDir().mkpath(dir);
    QFile f(QDir(dir).filePath(name));
    if (!f.open(QIODevice::WriteOnly | QIODevice::Append)) return false;
    return f.write(bytes) == bytes.size();
}
