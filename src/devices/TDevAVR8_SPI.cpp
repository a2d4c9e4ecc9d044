#include "devices/TDevAVR8_SPI.h"

#include "app/TLang.h"
#include "devices/TDevAVR8Exec.h"
#include "devices/TDeviceList.h"
#include "misc/TNormCmdParam.h"
#include "misc/dev_misc.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"
#include "project/TCmdCode.h"
#include "ui/TFormCmd.h"
#include "ui/TWgtRegisterForm.h"

#include <QRegularExpression>

namespace {
const QString kData = QStringLiteral("data");
} // namespace

TDevAVR8_SPI::TDevAVR8_SPI(const QString& code, const TData& param)
    : IDevice(code), cmdList((setDevParam(param), offeredCmdList())) {}

IDevice* TDevAVR8_SPI::Instance(const QString& code, const TData& param) {
    return new TDevAVR8_SPI(code, param);
}

QStringList TDevAVR8_SPI::getCmdList() {
    using namespace CTagCmdCode;
    return {set_clk,
            ident,
            erase,
            test_empty_flash,
            test_empty_eeprom,
            flash_char_write,
            flash_char_verify,
            flash_data_read,
            flash_data_write,
            flash_data_verify,
            flash_file_read,
            flash_file_write,
            flash_file_verify,
            eeprom_char_write,
            eeprom_char_verify,
            eeprom_data_read,
            eeprom_data_write,
            eeprom_data_verify,
            eeprom_file_read,
            eeprom_file_write,
            eeprom_file_verify,
            fuse_read,
            fuse_write,
            fuse_verify,
            lock_read,
            lock_write,
            lock_verify,
            osccal_read,
            leave};
}

QString TDevAVR8_SPI::algKey(const QString& code) {
    using namespace CTagCmdCode;
    if (TMiscDev::isOneOf(code, {ident, erase, fuse_write, lock_write})) return QStringLiteral("alg_") + code;
    if (TMiscDev::isOneOf(code, {fuse_read, fuse_verify})) return QStringLiteral("alg_fuse_read");
    if (TMiscDev::isOneOf(code, {lock_read, lock_verify})) return QStringLiteral("alg_lock_read");
    if (code == QLatin1String(osccal_read)) return QStringLiteral("alg_osccal_read");
    return QString();
}

QStringList TDevAVR8_SPI::offeredCmdList() const {
    QStringList out;
    for (const QString& code : getCmdList()) {
        const QString key = algKey(code);
        if (key.isEmpty() || devParam.contains(key)) out << code;
    }
    return out;
}

QString TDevAVR8_SPI::getNotSupportedText(const QString& code) const {
    if (cmdList.contains(code) || !getCmdList().contains(code)) return QString();
    return Lang.get(1100).arg(CmdCode.getName(code), getDeviceCode());
}

bool TDevAVR8_SPI::supportCmd(const QString& code) const {
    return cmdList.contains(code);
}

QStringList TDevAVR8_SPI::getSupportCmdList() const {
    return cmdList;
}

// The catalogue key prefix of the byte group a command edits; empty for other commands.
QString TDevAVR8_SPI::bytesGroup(const QString& code) {
    using namespace CTagCmdCode;
    if (TMiscDev::isOneOf(code, {fuse_read, fuse_write, fuse_verify})) return QStringLiteral("fuse");
    if (TMiscDev::isOneOf(code, {lock_read, lock_write, lock_verify})) return QStringLiteral("lock");
    if (code == QLatin1String(osccal_read)) return QStringLiteral("osccal");
    return QString();
}

QString TDevAVR8_SPI::bytesDefault(const QString& code) const {
    const QString group = bytesGroup(code);
    return group.isEmpty() ? QString() : devParam.value(group + QStringLiteral("_def")).toString();
}

QString TDevAVR8_SPI::bytesConfig(const QString& code) {
    return bytesGroup(code) + QStringLiteral("_cfg");
}

void TDevAVR8_SPI::getDefaultCmdParam(TData& p) {
    using namespace CTagCmdCode;
    const QString code = p.value(CTagCmd::cmd).toString();
    if (TMiscDev::isOneOf(code, {flash_char_write, flash_char_verify}))
        TNormCmdParam::cmdRWVFlashCharDef(this, p);
    if (TMiscDev::isOneOf(code, {flash_data_read, flash_data_write, flash_data_verify}))
        TNormCmdParam::cmdRWVFlashDataDef(this, p);
    if (TMiscDev::isOneOf(code, {flash_file_read, flash_file_write, flash_file_verify}))
        TNormCmdParam::cmdRWVFlashFileDef(this, p);
    if (TMiscDev::isOneOf(code, {eeprom_char_write, eeprom_char_verify}))
        TNormCmdParam::cmdRWVEEPROMCharDef(this, p);
    if (TMiscDev::isOneOf(code, {eeprom_data_read, eeprom_data_write, eeprom_data_verify}))
        TNormCmdParam::cmdRWVEEPROMDataDef(this, p);
    if (TMiscDev::isOneOf(code, {eeprom_file_read, eeprom_file_write, eeprom_file_verify}))
        TNormCmdParam::cmdRWVEEPROMFileDef(this, p);
    if (TMiscDev::isOneOf(
            code, {fuse_read, fuse_write, fuse_verify, lock_read, lock_write, lock_verify, osccal_read}))
        p.insert(kData, bytesDefault(code));
    if (code == QLatin1String(set_clk)) TNormCmdParam::cmdSetCLKDef(getDevConnect(), p);
    if (code == QLatin1String(leave)) TNormCmdParam::cmdLeaveDef(p, true);
}

QString TDevAVR8_SPI::getViewCmdName(const TData& p) const {
    return CmdCode.getName(p.value(CTagCmd::cmd).toString());
}

QString TDevAVR8_SPI::getViewCmdParam(const TData& p, QWidget*) const {
    using namespace CTagCmdCode;
    const QString code = p.value(CTagCmd::cmd).toString();
    if (TMiscDev::isOneOf(code, {flash_char_write, flash_char_verify, eeprom_char_write, eeprom_char_verify}))
        return TNormCmdParam::cmdRWVCharView(p);
    if (TMiscDev::isOneOf(code, {flash_data_read, flash_data_write, flash_data_verify, eeprom_data_read,
                                 eeprom_data_write, eeprom_data_verify}))
        return TNormCmdParam::cmdRWVDataView(p);
    if (TMiscDev::isOneOf(code, {flash_file_read, flash_file_write, flash_file_verify, eeprom_file_read,
                                 eeprom_file_write, eeprom_file_verify}))
        return TNormCmdParam::cmdRWVFileView(p);
    if (code == QLatin1String(ident))
        return Lang.get(485).arg(devParam.value(QStringLiteral("signature")).toString());
    if (!bytesDefault(code).isEmpty()) return p.value(kData).toString();
    if (code == QLatin1String(set_clk)) return TMiscDev::getViewFreqValue(int(TMiscDev::getCLK(p)));
    if (code == QLatin1String(leave)) return TNormCmdParam::cmdLeaveView(p, true);
    return QString();
}

QWidget* TDevAVR8_SPI::getFormCmdParam(const TData& p) const {
    using namespace CTagCmdCode;
    const QString code = p.value(CTagCmd::cmd).toString();
    TFormCmd* form = nullptr;
    if (code == QLatin1String(set_clk)) form = TNormCmdParam::cmdSetCLKForm(getDevConnect(), p);
    if (TMiscDev::isOneOf(code, {flash_char_write, flash_char_verify}))
        form = TNormCmdParam::cmdRWVFlashCharForm(this, p);
    if (TMiscDev::isOneOf(code, {flash_data_read, flash_data_write, flash_data_verify}))
        form = TNormCmdParam::cmdRWVFlashDataForm(this, p);
    if (TMiscDev::isOneOf(code, {flash_file_read, flash_file_write, flash_file_verify}))
        form = TNormCmdParam::cmdRWVFlashFileForm(this, p);
    if (TMiscDev::isOneOf(code, {eeprom_char_write, eeprom_char_verify}))
        form = TNormCmdParam::cmdRWVEEPROMCharForm(this, p);
    if (TMiscDev::isOneOf(code, {eeprom_data_read, eeprom_data_write, eeprom_data_verify}))
        form = TNormCmdParam::cmdRWVEEPROMDataForm(this, p);
    if (TMiscDev::isOneOf(code, {eeprom_file_read, eeprom_file_write, eeprom_file_verify}))
        form = TNormCmdParam::cmdRWVEEPROMFileForm(this, p);
    if (!bytesGroup(code).isEmpty()) {
        // Read commands show what they read; only writes and verifies are edited.
        form = new TFormCmd(p);
        const bool read = code.endsWith(QLatin1String("_read"));
        const QByteArray factory = read || code == QLatin1String(osccal_read)
                                       ? QByteArray()
                                       : QByteArray::fromHex(bytesDefault(code).toLatin1());
        TWgtRegisterForm::addToForm(form, kData, devParam.value(bytesConfig(code)).toStringList(), read,
                                    false, factory);
    }
    if (code == QLatin1String(leave)) form = TNormCmdParam::cmdLeaveForm(this, p, true);
    return keepForm(form);
}

TData TDevAVR8_SPI::getChangedParam(const TData& p) const {
    return formParam(p);
}

void TDevAVR8_SPI::normCmdParam(TData&) {}

// Written or compared bytes must be exactly as many as the part has (hex text, two digits a byte), and
// the bits the part's instruction does not carry stay 1: the instruction sends the byte as it is, so a
// 0 there would change one of the instruction's own bits.
bool TDevAVR8_SPI::checkBytes(const QString& code, const TData& p) const {
    const QString text = p.value(kData).toString();
    const int n = bytesDefault(code).size() / 2;
    static const QRegularExpression hexDigits(QStringLiteral("^[0-9A-Fa-f]*$"));
    if (n <= 0 || text.size() != 2 * n || !hexDigits.match(text).hasMatch()) return false;
    const QByteArray bytes = QByteArray::fromHex(text.toLatin1());
    const QByteArray mask =
        QByteArray::fromHex(devParam.value(bytesGroup(code) + QStringLiteral("_mask")).toByteArray());
    for (int i = 0; i < mask.size() && i < bytes.size(); ++i)
        if ((bytes.at(i) | mask.at(i)) != char(0xFF)) return false;
    return true;
}

bool TDevAVR8_SPI::checkCmdParam(const TData& p) {
    using namespace CTagCmdCode;
    const QString code = p.value(CTagCmd::cmd).toString();
    if (code == QLatin1String(set_clk)) return TNormCmdParam::cmdSetCLKCheck(p);
    if (TMiscDev::isOneOf(
            code, {ident, erase, test_empty_flash, test_empty_eeprom, fuse_read, lock_read, osccal_read}))
        return true;
    if (TMiscDev::isOneOf(code, {flash_char_write, flash_char_verify}))
        return TNormCmdParam::cmdRWVFlashCharCheck(this, p);
    if (TMiscDev::isOneOf(code, {flash_data_read, flash_data_write, flash_data_verify}))
        return TNormCmdParam::cmdRWVFlashDataCheck(this, p);
    if (TMiscDev::isOneOf(code, {flash_file_read, flash_file_write, flash_file_verify}))
        return TNormCmdParam::cmdRWVFlashFileCheck(this, p);
    if (TMiscDev::isOneOf(code, {eeprom_char_write, eeprom_char_verify}))
        return TNormCmdParam::cmdRWVEEPROMCharCheck(this, p);
    if (TMiscDev::isOneOf(code, {eeprom_data_read, eeprom_data_write, eeprom_data_verify}))
        return TNormCmdParam::cmdRWVEEPROMDataCheck(this, p);
    if (TMiscDev::isOneOf(code, {eeprom_file_read, eeprom_file_write, eeprom_file_verify}))
        return TNormCmdParam::cmdRWVEEPROMFileCheck(this, p);
    if (TMiscDev::isOneOf(code, {fuse_write, fuse_verify, lock_write, lock_verify}))
        return checkBytes(code, p);
    if (code == QLatin1String(leave)) return TNormCmdParam::cmdLeaveCheck(p, true);
    return false;
}

bool TDevAVR8_SPI::checkCmdSetDeviceParam(const TData&) {
    return true;
}

void TDevAVR8_SPI::getDefaultParamCmdSetDevice(TData& p) {
    TNormCmdParam::cmdSetCLKDef(getDevConnect(), p);
}

// The device's own setting is its clock.
QWidget* TDevAVR8_SPI::getWgtCmdSetDeviceParam(const TData& p) {
    return TNormCmdParam::cmdSetCLKForm(getDevConnect(), p);
}

// The layout the other families use (type code 16 bits, cfg_hw, one family byte, clock 32 bits, delay);
// the family byte carries the reset polarity the programmer drives the target's reset line with.
QByteArray TDevAVR8_SPI::getCmdSetDeviceExec(const TData& param) {
    TData p = param;
    if (!p.contains(QStringLiteral("clk"))) TNormCmdParam::cmdSetCLKDef(getDevConnect(), p);
    QString type = devParam.value(QStringLiteral("prg_type")).toString();
    QByteArray out;
    TMiscDev::appendLE(out, DeviceList.getDevCode(type), 2);
    TMiscDev::appendLE(out, devParam.value(QStringLiteral("cfg_hw")).toUInt(), 1);
    TMiscDev::appendLE(out, devParam.value(QStringLiteral("reset_pol")).toUInt(), 1);
    TMiscDev::appendLE(out, TMiscDev::getCLK(p), 4);
    TMiscDev::appendLE(out, devParam.value(QStringLiteral("delay")).toUInt(), 1);
    return out;
}

IDeviceExec* TDevAVR8_SPI::createExecObject(const TData& param) {
    return new TDevAVR8Exec(param);
}
