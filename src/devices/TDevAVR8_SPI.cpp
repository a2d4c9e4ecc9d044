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
const QString kData = CTagCmdRegister::data;

// ---- fuses, lock bits and calibration: a group of bytes the catalogue describes ----

// The catalogue keys of a group are its name with "_def" (the factory bytes), "_cfg" (the form's
// description) and "_mask" (the bits the instruction does not carry).
constexpr char fuseGroup[] = "fuse", lockGroup[] = "lock", osccalGroup[] = "osccal";

template <const char* G> QVariant bytesItem(const TCmdFamily& dev, const char* suffix) {
    return dev.getDevParam().value(QLatin1String(G) + QLatin1String(suffix));
}

template <const char* G> void bytesDefaults(const TCmdFamily& dev, const TCmdRow&, TData& p) {
    p.insert(kData, bytesItem<G>(dev, "_def").toString());
}

template <const char* G> QString bytesView(const TCmdFamily& dev, const TCmdRow&, const TData& p) {
    return bytesItem<G>(dev, "_def").toString().isEmpty() ? QString() : p.value(kData).toString();
}

template <const char* G> TFormCmd* bytesForm(const TCmdFamily& dev, const TCmdRow& row, const TData& p) {
    auto* form = new TFormCmd(p);
    // A read shows what it read; a write or verify starts from the factory bytes.
    const bool read = row.op == TCmdOp::Read;
    const QByteArray factory =
        read ? QByteArray() : QByteArray::fromHex(bytesItem<G>(dev, "_def").toString().toLatin1());
    TWgtRegisterForm::addToForm(form, kData, bytesItem<G>(dev, "_cfg").toStringList(), read, false, factory);
    return form;
}

// Written or compared bytes must be exactly as many as the part has (hex text, two digits a byte), and
// the bits the part's instruction does not carry stay 1: the instruction sends the byte as it is, so a
// 0 there would change one of the instruction's own bits. Reads take no parameters.
template <const char* G> bool bytesCheck(const TCmdFamily& dev, const TCmdRow& row, const TData& p) {
    if (row.op == TCmdOp::Read) return true;
    const QString text = p.value(kData).toString();
    const int n = bytesItem<G>(dev, "_def").toString().size() / 2;
    static const QRegularExpression hexDigits(QStringLiteral("^[0-9A-Fa-f]*$"));
    if (n <= 0 || text.size() != 2 * n || !hexDigits.match(text).hasMatch()) return false;
    const QByteArray bytes = QByteArray::fromHex(text.toLatin1());
    const QByteArray mask = QByteArray::fromHex(bytesItem<G>(dev, "_mask").toByteArray());
    for (int i = 0; i < mask.size() && i < bytes.size(); ++i)
        if ((bytes.at(i) | mask.at(i)) != char(0xFF)) return false;
    return true;
}

template <const char* G> const TCmdOwn bytes{bytesDefaults<G>, bytesView<G>, bytesForm<G>, bytesCheck<G>};

QString identView(const TCmdFamily& dev, const TCmdRow&, const TData&) {
    return Lang.get(485).arg(dev.devItem("signature").toString());
}

const TCmdOwn identity{nullptr, identView, nullptr, nullptr};
} // namespace

// The family byte of the set-device payload is the polarity the programmer drives the target's reset
// line with.
TDevAVR8_SPI::TDevAVR8_SPI(const QString& code, const TData& param)
    : TDevFamily(code, param, cmdTable(),
                 {{"flash_addr_begin", "flash_size"}, {"eeprom_addr_begin", "eeprom_size"}},
                 offeredCmdList(param)) {
    familyByteKey = "reset_pol";
}

const TCmdRows& TDevAVR8_SPI::cmdTable() {
    using namespace CTagCmdCode;
    using K = TCmdKind;
    using O = TCmdOp;
    enum { Flash = 0, Eeprom = 1 };
    static const TCmdRows rows{
        {set_clk, K::Clock, O::None, Flash},
        {ident, K::Own, O::Read, Flash, &identity},
        {erase, K::Plain, O::Write, Flash},
        {test_empty_flash, K::Plain, O::Verify, Flash},
        {test_empty_eeprom, K::Plain, O::Verify, Eeprom},
        {flash_char_write, K::Char, O::Write, Flash},
        {flash_char_verify, K::Char, O::Verify, Flash},
        {flash_data_read, K::Data, O::Read, Flash},
        {flash_data_write, K::Data, O::Write, Flash},
        {flash_data_verify, K::Data, O::Verify, Flash},
        {flash_file_read, K::File, O::Read, Flash},
        {flash_file_write, K::File, O::Write, Flash},
        {flash_file_verify, K::File, O::Verify, Flash},
        {eeprom_char_write, K::Char, O::Write, Eeprom},
        {eeprom_char_verify, K::Char, O::Verify, Eeprom},
        {eeprom_data_read, K::Data, O::Read, Eeprom},
        {eeprom_data_write, K::Data, O::Write, Eeprom},
        {eeprom_data_verify, K::Data, O::Verify, Eeprom},
        {eeprom_file_read, K::File, O::Read, Eeprom},
        {eeprom_file_write, K::File, O::Write, Eeprom},
        {eeprom_file_verify, K::File, O::Verify, Eeprom},
        {fuse_read, K::Own, O::Read, Flash, &bytes<fuseGroup>},
        {fuse_write, K::Own, O::Write, Flash, &bytes<fuseGroup>},
        {fuse_verify, K::Own, O::Verify, Flash, &bytes<fuseGroup>},
        {lock_read, K::Own, O::Read, Flash, &bytes<lockGroup>},
        {lock_write, K::Own, O::Write, Flash, &bytes<lockGroup>},
        {lock_verify, K::Own, O::Verify, Flash, &bytes<lockGroup>},
        {osccal_read, K::Own, O::Read, Flash, &bytes<osccalGroup>},
        {leave, K::Leave, O::None, Flash},
    };
    return rows;
}

QStringList TDevAVR8_SPI::getCmdList() {
    return TCmdTable::codes(cmdTable());
}

QString TDevAVR8_SPI::algKey(const QString& code) {
    using namespace CTagCmdCode;
    if (TMiscDev::isOneOf(code, {ident, erase, fuse_write, lock_write})) return QStringLiteral("alg_") + code;
    if (TMiscDev::isOneOf(code, {fuse_read, fuse_verify})) return QStringLiteral("alg_fuse_read");
    if (TMiscDev::isOneOf(code, {lock_read, lock_verify})) return QStringLiteral("alg_lock_read");
    if (code == QLatin1String(osccal_read)) return QStringLiteral("alg_osccal_read");
    return QString();
}

QStringList TDevAVR8_SPI::offeredCmdList(const TData& devParam) {
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

IDeviceExec* TDevAVR8_SPI::createExecObject(const TData& param) {
    return new TDevAVR8Exec(param);
}
