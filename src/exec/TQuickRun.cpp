#include "exec/TQuickRun.h"

#include "app/TAppData.h"
#include "app/TLang.h"
#include "devices/IDevice.h"
#include "devices/TDeviceList.h"
#include "exec/TChipDetect.h"
#include "exec/TRunner.h"
#include "formats/TFormatGuess.h"
#include "misc/TNormCmdParam.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"
#include "project/TChipCmds.h"
#include "project/TCmdCode.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"
#include "project/TPrjBuilder.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <cstdio>

namespace {

// Options that become commands, and whether each takes a value.
const QList<QPair<QString, bool>> kStepOptions = {{"detect", false}, {"erase", false}, {"write", true},
                                                  {"verify", true},  {"read", true},   {"fuses", true},
                                                  {"lock", true}};
// Options that set up the run; each takes a value.
const QStringList kSetOptions = {"prog", "chip", "format", "memory", "vcc"};

const QString kAuto = QStringLiteral("auto");
const QString kFlash = QStringLiteral("flash");
const QString kEeprom = QStringLiteral("eeprom");

enum LangId {
    TextUnknownChip = 1700,
    TextUnknownProg = 1701,
    TextNothingToDo = 1702,
    TextSeveralMatch = 1703,
    TextNoCommand = 1704,
    TextBadFormat = 1705,
    TextBadMemory = 1706,
    TextNeedsValue = 1707,
    TextNoProg = 1708,
    TextNoChip = 1709,
    TextCannotRun = 1710,
    TextNoChipMatches = 1712,
};

// The operations an option becomes: the file options work on the line's memory, fuses and lock bits
// are a write followed by a verify of the value.
QList<QPair<TChipCmds::Op, QString>> opsOf(const QString& option, const QString& memory) {
    if (option == "detect") return {{TChipCmds::Detect, memory}};
    if (option == "erase") return {{TChipCmds::Erase, memory}};
    if (option == "fuses" || option == "lock")
        return {{TChipCmds::Write, option}, {TChipCmds::Verify, option}};
    if (option == "write") return {{TChipCmds::Write, memory}};
    if (option == "verify") return {{TChipCmds::Verify, memory}};
    return {{TChipCmds::Read, memory}};
}

} // namespace

bool TQuickRun::wanted(const QStringList& args) {
    for (const QString& a : args.mid(1))
        if (a == "--chip" || a.startsWith("--chip=") || a == "--prog" || a.startsWith("--prog=")) return true;
    return false;
}

bool TQuickRun::parse(const QStringList& args, Options& opt, QString& error) {
    for (int i = 1; i < args.size(); ++i) {
        QString name = args[i];
        if (!name.startsWith("--")) continue;
        name = name.mid(2);
        QString value;
        bool hasValue = false;
        if (const int eq = name.indexOf('='); eq >= 0) {
            value = name.mid(eq + 1);
            name = name.left(eq);
            hasValue = true;
        }
        const auto step = std::find_if(kStepOptions.begin(), kStepOptions.end(),
                                       [&](const auto& s) { return s.first == name; });
        const bool takesValue = kSetOptions.contains(name) || (step != kStepOptions.end() && step->second);
        if (step == kStepOptions.end() && !kSetOptions.contains(name)) continue;
        if (takesValue && !hasValue) {
            if (i + 1 >= args.size()) {
                error = Lang.get(TextNeedsValue).arg(name);
                return false;
            }
            value = args[++i];
        }
        if (step != kStepOptions.end())
            opt.steps.append({name, value});
        else if (name == "prog")
            opt.prog = value;
        else if (name == "chip")
            opt.chip = value;
        else if (name == "vcc")
            opt.vcc = value;
        else if (name == "format")
            opt.format = value.toLower();
        else if (name == "memory")
            opt.memory = value.toLower();
    }
    if (!opt.format.isEmpty() && !QStringList{"bin", "hex", "ihex"}.contains(opt.format)) {
        error = Lang.get(TextBadFormat).arg(opt.format);
        return false;
    }
    if (opt.memory != kFlash && opt.memory != kEeprom) {
        error = Lang.get(TextBadMemory).arg(opt.memory);
        return false;
    }
    if (opt.chip.isEmpty()) {
        error = Lang.get(TextNoChip);
        return false;
    }
    if (opt.steps.isEmpty() && opt.chip.compare(kAuto, Qt::CaseInsensitive) != 0) {
        error = Lang.get(TextNothingToDo);
        return false;
    }
    return true;
}

QString TQuickRun::formatKey(const QString& option, const QString& file, bool forSave) {
    if (!option.isEmpty()) return option;
    return forSave ? TFormatGuess::keyOfName(file) : TFormatGuess::keyOf(file);
}

void TQuickRun::fail(const QString& text) {
    std::fprintf(err, "%s\n", qPrintable(text));
}

// An exact name first, then one that differs only in case.
bool TQuickRun::resolveChip(const QString& name, QString& device, QString& file) {
    const QHash<QString, QString> list = DeviceList.getDeviceList();
    for (auto it = list.cbegin(); it != list.cend(); ++it) {
        if (it.key() == name) {
            device = it.key();
            file = it.value();
            return true;
        }
        if (it.key().compare(name, Qt::CaseInsensitive) == 0) {
            device = it.key();
            file = it.value();
        }
    }
    if (!device.isEmpty()) return true;
    fail(Lang.get(TextUnknownChip).arg(name));
    return false;
}

// Each family's try is kept back and shown only when it found the part, or when no family did: a
// family of another bus fails on the chip and would only confuse.
QStringList TQuickRun::detect(const QString& prog) {
    TChipDetect detection(prog);
    QByteArray tries;
    for (;;) {
        ProjectData.clrPrj();
        const int idCfg = ProjectData.newCfg(kAuto, QString(), -1);
        if (!detection.buildNext(ProjectData, idCfg)) break;
        FILE* held = std::tmpfile();
        TRunner runner(held ? held : out, err);
        QObject::connect(&runner, &TRunner::signalEvent,
                         [&](TCodeExec code, const QString& text, const QString& param) {
                             detection.event(code, text, param);
                         });
        runner.runLoaded(TRunner::Options());
        QByteArray text;
        if (held) {
            std::rewind(held);
            char buf[4096];
            for (size_t n; (n = std::fread(buf, 1, sizeof buf, held)) > 0;)
                text.append(buf, int(n));
            std::fclose(held);
        }
        if (!detection.found().isEmpty()) {
            std::fputs(text.constData(), out);
            return detection.found();
        }
        tries.append(text);
        if (!detection.wantsMore()) break;
    }
    std::fputs(tries.constData(), out);
    std::fflush(out);
    return detection.found();
}

bool TQuickRun::checkBuilt(int idCfg) {
    TLocker lock(ProjectData.getMutex());
    for (TDataCmd* cmd : ProjectData.getCmdListCfg(idCfg)) {
        if (cmd->getValidDev() && cmd->getValidParam()) continue;
        const TData data = cmd->getData();
        IDevice* group = cmd->getGroupObject();
        const QString name = group ? group->getViewCmdName(data) : cmd->getCmdCode();
        fail(Lang.get(TextCannotRun)
                 .arg(optionOf.value(cmd->getUIN()), Lang.get(cmd->getValidDev() ? 388 : 387).arg(name)));
        return false;
    }
    return true;
}

bool TQuickRun::addStep(const Options& opt, IDevice* dev, int idCfg, const Step& step,
                        const QString& workDir) {
    const QList<QPair<TChipCmds::Op, QString>> ops = opsOf(step.option, opt.memory);
    QStringList codes;
    for (const auto& op : ops)
        codes.append(TChipCmds::code(dev, op.first, op.second));
    if (codes.contains(QString())) {
        const bool plain = step.option == "detect" || step.option == "erase" || step.option == "fuses" ||
                           step.option == "lock";
        const QString what =
            plain ? step.option : QStringLiteral("%1 --memory %2").arg(step.option, opt.memory);
        fail(Lang.get(TextNoCommand).arg(dev ? dev->getDeviceCode() : opt.chip, what));
        return false;
    }
    QString path, format;
    if (step.option == "write" || step.option == "verify" || step.option == "read") {
        path = QFileInfo(QDir(workDir), step.value).absoluteFilePath();
        format = formatKey(opt.format, path, step.option == "read");
    }
    for (int i = 0; i < ops.size(); ++i)
        optionOf.insert(TPrjBuilder::addCmd(
                            ProjectData, idCfg, codes.at(i),
                            TChipCmds::values(ops.at(i).first, ops.at(i).second, path, format, step.value)),
                        QStringLiteral("--") + step.option);
    return true;
}

bool TQuickRun::build(const Options& opt, const QString& device, const QString& file,
                      const QString& workDir) {
    ProjectData.clrPrj();
    ProjectData.updPrjParam({{CTagPrj::work_path, workDir}});
    const int idCfg = ProjectData.newCfg(device, QString(), -1);
    TPrjBuilder::addCmd(ProjectData, idCfg, CTagCmdCode::set_prog, {{CTagCmdToolsSetProg::prog, opt.prog}});
    if (!opt.vcc.isEmpty()) TPrjBuilder::addCmd(ProjectData, idCfg, CTagCmdCode::set_vcc, {{"vcc", opt.vcc}});
    TPrjBuilder::addSetDevice(ProjectData, idCfg, device, file);
    IDevice* dev = ProjectData.createDevice(device, file);
    for (const Step& step : opt.steps) {
        // After a detection the part is known; "--detect" adds nothing more.
        if (step.option == "detect" && opt.chip.compare(kAuto, Qt::CaseInsensitive) == 0) continue;
        if (!addStep(opt, dev, idCfg, step, workDir)) return false;
    }
    return checkBuilt(idCfg);
}

int TQuickRun::run(const Options& given, const QString& workDir) {
    Options opt = given;
    if (opt.prog.isEmpty()) opt.prog = AppData.progName.getNameFromIndex(AppData.progDefault);
    if (opt.prog.isEmpty()) {
        fail(Lang.get(TextNoProg));
        return TRunner::ExitUsage;
    }
    if (!AppData.progName.contains(opt.prog)) {
        fail(Lang.get(TextUnknownProg).arg(opt.prog, AppData.progName.getNameList().join(", ")));
        return TRunner::ExitUsage;
    }
    QString device, file;
    if (opt.chip.compare(kAuto, Qt::CaseInsensitive) == 0) {
        const QStringList found = detect(opt.prog);
        const bool more = std::any_of(opt.steps.begin(), opt.steps.end(),
                                      [](const Step& s) { return s.option != "detect"; });
        if (found.isEmpty()) return TRunner::ExitFailed;
        if (!more) return TRunner::ExitOk;
        if (found.size() > 1) {
            fail(Lang.get(TextSeveralMatch).arg(found.join(", ")));
            return TRunner::ExitFailed;
        }
        device = found.first();
        file = DeviceList.getDeviceList().value(device);
    } else if (!resolveChip(opt.chip, device, file)) {
        return TRunner::ExitUsage;
    }
    if (!build(opt, device, file, workDir)) return TRunner::ExitUsage;
    TRunner runner(out, err);
    TRunner::Options ro;
    ro.allowLockout = opt.allowLockout;
    return runner.runLoaded(ro);
}

int TQuickRun::listChips(const QString& pattern) {
    const QHash<QString, QString> list = DeviceList.getDeviceList();
    QStringList names = list.keys();
    std::sort(names.begin(), names.end(), [](const QString& a, const QString& b) {
        const int c = a.compare(b, Qt::CaseInsensitive);
        return c != 0 ? c < 0 : a < b;
    });
    // A pattern with wildcards is matched whole, a plain one anywhere in the name, both ignoring case.
    const bool wild = pattern.contains('*') || pattern.contains('?');
    const QRegularExpression re(QRegularExpression::wildcardToRegularExpression(pattern),
                                QRegularExpression::CaseInsensitiveOption);
    int shown = 0;
    for (const QString& name : names) {
        if (wild ? !re.match(name).hasMatch() : !name.contains(pattern, Qt::CaseInsensitive)) continue;
        const QString family = list.value(name).section('/', 0, 0);
        std::fprintf(out, "%s\t%s\n", qPrintable(name), qPrintable(family));
        ++shown;
    }
    if (shown > 0) return TRunner::ExitOk;
    fail(Lang.get(TextNoChipMatches).arg(pattern));
    return TRunner::ExitFailed;
}

int TQuickRun::listProgs() {
    for (int i = 0; i < AppData.progName.count(); ++i) {
        const TProgInfo info = AppData.progName.getDataFromIndex(i);
        std::fprintf(out, "%s\t%s\t%s%s\n", qPrintable(AppData.progName.getNameFromIndex(i)),
                     qPrintable(info.type), qPrintable(info.port), i == AppData.progDefault ? "\t*" : "");
    }
    return TRunner::ExitOk;
}
