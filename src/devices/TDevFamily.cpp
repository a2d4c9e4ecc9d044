#include "devices/TDevFamily.h"

#include "devices/TDeviceList.h"
#include "misc/TNormCmdParam.h"
#include "misc/dev_misc.h"
#include "project/CTagPrj.h"
#include "ui/TFormCmd.h"

TDevFamily::TDevFamily(const QString& code, const TData& param, const TCmdRows& table,
                       const QStringList& offered)
    : IDevice(code), rows(table), cmdList(offered.isEmpty() ? TCmdTable::codes(table) : offered) {
    setDevParam(param);
}

const TCmdRow* TDevFamily::rowOf(const TData& p) const {
    return TCmdTable::find(rows, p.value(CTagCmd::cmd).toString());
}

// The offered list may hold separators, which are no commands.
bool TDevFamily::supportCmd(const QString& code) const {
    return TCmdTable::find(rows, code) && cmdList.contains(code);
}

QStringList TDevFamily::getSupportCmdList() const {
    return cmdList;
}

void TDevFamily::getDefaultCmdParam(TData& p) {
    const TCmdRow* row = rowOf(p);
    if (!row) return;
    qint64 begin, size;
    spaceRange(*row, begin, size);
    if (!TCmdTable::defaults(*row, this, p, begin, size)) ownDefaults(*row, p);
}

QString TDevFamily::getViewCmdParam(const TData& p, QWidget*) const {
    const TCmdRow* row = rowOf(p);
    QString text;
    if (!row || TCmdTable::view(*row, p, text)) return text;
    return ownView(*row, p);
}

QWidget* TDevFamily::getFormCmdParam(const TData& p) const {
    const TCmdRow* row = rowOf(p);
    TFormCmd* form = nullptr;
    if (row) {
        qint64 begin, size;
        spaceRange(*row, begin, size);
        if (!TCmdTable::form(*row, this, p, begin, size, form)) form = ownForm(*row, p);
    }
    return keepForm(form);
}

bool TDevFamily::checkCmdParam(const TData& p) {
    const TCmdRow* row = rowOf(p);
    if (!row) return false;
    qint64 begin, size;
    spaceRange(*row, begin, size);
    bool valid = false;
    if (TCmdTable::check(*row, p, begin, size, valid)) return valid;
    return ownCheck(*row, p);
}

void TDevFamily::getDefaultParamCmdSetDevice(TData& p) {
    TNormCmdParam::cmdSetCLKDef(getDevConnect(), p);
}

QWidget* TDevFamily::getWgtCmdSetDeviceParam(const TData& p) {
    return TNormCmdParam::cmdSetCLKForm(getDevConnect(), p);
}

QByteArray TDevFamily::getCmdSetDeviceExec(const TData& param) {
    TData p = param;
    if (!p.contains(QStringLiteral("clk"))) TNormCmdParam::cmdSetCLKDef(getDevConnect(), p);
    QString type = devParam.value(QStringLiteral("prg_type")).toString();
    QByteArray out;
    TMiscDev::appendLE(out, DeviceList.getDevCode(type), 2);
    TMiscDev::appendLE(out, devParam.value(QStringLiteral("cfg_hw")).toUInt(), 1);
    TMiscDev::appendLE(out, familyByte(p), 1);
    TMiscDev::appendLE(out, TMiscDev::getCLK(p), 4);
    TMiscDev::appendLE(out, devParam.value(QStringLiteral("delay")).toUInt(), 1);
    return out;
}

void TDevFamily::spaceRange(const TCmdRow&, qint64& begin, qint64& size) const {
    TNormCmdParam::readDevData(this, begin, size);
}

void TDevFamily::ownDefaults(const TCmdRow&, TData&) {}

QString TDevFamily::ownView(const TCmdRow&, const TData&) const {
    return QString();
}

TFormCmd* TDevFamily::ownForm(const TCmdRow&, const TData&) const {
    return nullptr;
}

bool TDevFamily::ownCheck(const TCmdRow&, const TData&) const {
    return false;
}

unsigned int TDevFamily::familyByte(const TData&) const {
    return 0;
}
