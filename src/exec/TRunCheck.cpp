#include "exec/TRunCheck.h"

#include "app/TApp.h"
#include "app/TLang.h"
#include "devices/IDevice.h"
#include "devices/TDevTools.h"
#include "exec/TLogText.h"
#include "formats/TDataFileCheck.h"
#include "formats/TFormat.h"
#include "misc/dev_misc.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"
#include "project/TCmdProblem.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"

#include <QFileInfo>

#include <limits>

namespace {
constexpr int text_where = 1010;
constexpr int text_bad_param = 1014;

bool isOneOf(const QString& code, std::initializer_list<const char*> codes) {
    for (const char* c : codes)
        if (code == QLatin1String(c)) return true;
    return false;
}

bool isFileRead(const QString& code) {
    using namespace CTagCmdCode;
    return isOneOf(code, {file_read, flash_file_read, eeprom_file_read});
}

bool isFileSource(const QString& code) {
    using namespace CTagCmdCode;
    return isOneOf(code, {file_write, file_verify, flash_file_write, flash_file_verify, eeprom_file_write,
                          eeprom_file_verify});
}
} // namespace

TRunCheck::TRunCheck(int id) : idCfg(id) {}

bool TRunCheck::readsFile(const TData& data, FileUse& use) {
    const QString code = data.value(CTagCmd::cmd).toString();
    if (isFileSource(code)) {
        int id;
        TMiscDev::getCmdParamRWVFile(data, id, use.addrFile, use.addrDevice, use.last, use.file, use.format);
        return true;
    }
    if (code != CTagCmdCode::calc_crc) return false;
    using namespace CTagCmdToolsCalcCRC;
    use.file = TApp::getAbsoluteFile(ProjectData.getPrjWorkPath(), data.value(file).toString());
    use.format = data.value(format).toString().toLower();
    use.addrFile = use.addrDevice = data.value(addr).toLongLong();
    // A count of 0 sums the file from addr to its end.
    // A hostile project may give values near the limits: the end saturates instead of wrapping.
    const qint64 n = data.value(count).toLongLong();
    const qint64 span = n > 0 ? n - 1 : std::numeric_limits<qint32>::max();
    const qint64 top = std::numeric_limits<qint64>::max();
    use.last = use.addrDevice > top - span ? top : use.addrDevice + span;
    return true;
}

bool TRunCheck::writesFile(const TData& data, FileUse& use) {
    if (!isFileRead(data.value(CTagCmd::cmd).toString())) return false;
    int id;
    TMiscDev::getCmdParamRWVFile(data, id, use.addrFile, use.addrDevice, use.last, use.file, use.format);
    return true;
}

// The family's check says only valid or not; the parameter that, set to its default, makes the command
// valid is the one to name.
QString TRunCheck::wrongParam(IDevice* group, const TData& data) {
    TData defaults;
    for (const char* key : {CTagCmd::cmd, CTagCmd::id_cmd, CTagCmd::id_cfg})
        defaults.insert(key, data.value(key));
    group->getDefaultCmdParam(defaults);
    TData own = data;
    TDataCmd::removeModelKeys(own);
    QStringList keys = own.keys();
    keys.sort();
    for (const QString& key : keys) {
        if (!defaults.contains(key) || defaults.value(key) == data.value(key)) continue;
        TData trial = data;
        trial.insert(key, defaults.value(key));
        if (group->checkCmdParam(trial)) return key;
    }
    return QString();
}

QList<int> TRunCheck::reachableCfgs() const {
    QList<int> cfgs{idCfg};
    for (int i = 0; i < cfgs.size(); ++i)
        for (TDataCmd* cmd : ProjectData.getCmdListCfg(cfgs[i])) {
            if (!cmd->getEnable() || cmd->getCmdCode() != CTagCmdCode::jamp) continue;
            const int target =
                ProjectData.getIdCfgFromIdCmd(cmd->getParam().value(CTagCmdToolsJamp::to_cmd).toInt());
            if (target >= 0 && !cfgs.contains(target)) cfgs.append(target);
        }
    return cfgs;
}

TRunCheck::Item TRunCheck::describe(TDataCmd* cmd, int pos, int cfg) const {
    Item item;
    const TData data = cmd->getData();
    IDevice* group = cmd->getGroupObject();
    QString name = group ? group->getViewCmdName(data) : QString();
    if (name.isEmpty()) name = cmd->getCmdCode();
    // Names come from the project, which may come from anyone: none may start a line of its own in the log.
    name = TLogText::escape(name);
    item.idCmd = cmd->getUIN();
    item.where =
        Lang.get(text_where).arg(pos + 1).arg(name, TLogText::escape(ProjectData.getNameCfgFromIdCfg(cfg)));
    item.invalid = TCmdProblem::get(name, data, group);
    if (item.invalid.isEmpty() && !group)
        item.invalid = IDevice::notSupportedText(group, cmd->getCmdCode(), name);
    // The plain "invalid parameters" text gains the parameter, where the family's check can tell it.
    if (group && item.invalid == Lang.get(388).arg(name)) {
        const QString key = wrongParam(group, data);
        if (!key.isEmpty()) item.invalid += Lang.get(text_bad_param).arg(key);
    }
    item.readsFile = readsFile(data, item.use);
    return item;
}

bool TRunCheck::checkRun() {
    QList<Item> items;
    QSet<QString> written;
    {
        TLocker lock(ProjectData.getMutex());
        for (int cfg : reachableCfgs()) {
            const QList<TDataCmd*> cmds = ProjectData.getCmdListCfg(cfg);
            for (int pos = 0; pos < cmds.size(); ++pos) {
                if (!cmds[pos]->getEnable()) continue;
                items.append(describe(cmds[pos], pos, cfg));
                FileUse use;
                if (writesFile(cmds[pos]->getData(), use))
                    written.insert(QFileInfo(use.file).absoluteFilePath());
            }
        }
    }
    // Files are read outside the lock: a large one takes a while, and other runs use the model.
    for (const Item& item : items) {
        if (!item.invalid.isEmpty()) {
            error = item.where.arg(item.invalid);
            return false;
        }
        if (!item.readsFile) continue;
        if (written.contains(QFileInfo(item.use.file).absoluteFilePath()))
            deferred.append(item);
        else if (!checkFile(item))
            return false;
    }
    return true;
}

bool TRunCheck::checkCommand(const TData& data) {
    const int id = data.value(CTagCmd::id_cmd).toInt();
    for (const Item& item : deferred)
        if (item.idCmd == id) return checkFile(item);
    return true;
}

bool TRunCheck::checkFile(const Item& item) {
    QString fault;
    if (TDataFileCheck::check(item.use.format, item.use.file, item.use.addrFile, item.use.addrDevice,
                              item.use.last, fault))
        return true;
    error = item.where.arg(fault.replace(item.use.file, TLogText::escape(item.use.file)));
    return false;
}

QString TRunCheck::getWarning(const TData& data) {
    FileUse use;
    if (!writesFile(data, use)) return QString();
    return TFormat::getWarning(use.format, use.addrFile + (use.last - use.addrDevice));
}
