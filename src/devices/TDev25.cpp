#include "devices/TDev25.h"

#include "app/TLang.h"
#include "devices/TDev25Exec.h"
#include "devices/TDeviceList.h"
#include "misc/TNormCmdParam.h"
#include "misc/dev_misc.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"
#include "project/TCmdCode.h"
#include "ui/TFormCmd.h"
#include "ui/TWgtRegisterForm.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>

namespace {
const QString kData = QStringLiteral("data"), kSize = QStringLiteral("size"),
              kBegin = QStringLiteral("begin"), kCount = QStringLiteral("count");
constexpr qint64 kBlockDefault = 65536;
constexpr int kRegisterSize = 256;
} // namespace

// The register spaces are address ranges of their own, starting at 0.
TDev25::TDev25(const QString& code, const TData& param)
    : TDevFamily(code, param, cmdTable(),
                 {{"addr_begin", "size"}, {nullptr, "security_reg_size"}, {nullptr, "sfdp_reg_size"}}) {}

const TCmdRows& TDev25::cmdTable() {
    using namespace CTagCmdCode;
    using K = TCmdKind;
    using O = TCmdOp;
    const int flash = int(Region::Flash), security = int(Region::Security), sfdp = int(Region::SFDP);
    static const TCmdRows rows{
        {set_clk, K::Clock, O::None, flash},
        {ident, K::Own, O::Read, flash},
        {erase, K::Plain, O::Write, flash},
        {test_empty, K::Plain, O::Verify, flash},
        {erase_blocks, K::Own, O::Write, flash},
        {test_empty_blocks, K::Own, O::Verify, flash},
        {char_write, K::Char, O::Write, flash},
        {char_verify, K::Char, O::Verify, flash},
        {data_read, K::Data, O::Read, flash},
        {data_write, K::Data, O::Write, flash},
        {data_verify, K::Data, O::Verify, flash},
        {file_read, K::File, O::Read, flash},
        {file_write, K::File, O::Write, flash},
        {file_verify, K::File, O::Verify, flash},
        {status_reg_read, K::Own, O::Read, flash},
        {status_reg_write, K::Own, O::Write, flash},
        {status_reg_verify, K::Own, O::Verify, flash},
        {security_reg_erase, K::Own, O::Write, security},
        {security_reg_test_empty, K::Own, O::Verify, security},
        {security_reg_read, K::File, O::Read, security},
        {security_reg_write, K::File, O::Write, security},
        {security_reg_verify, K::File, O::Verify, security},
        {unique_id_read, K::Own, O::Read, flash},
        {sfdp_reg_read, K::File, O::Read, sfdp},
        {leave, K::Leave, O::None, flash},
    };
    return rows;
}

void TDev25::ownDefaults(const TCmdRow& row, TData& p) {
    using namespace CTagCmdCode;
    const QString code = QLatin1String(row.code);
    if (TMiscDev::isOneOf(code, {erase_blocks, test_empty_blocks})) {
        p.insert(kSize, kBlockDefault);
        p.insert(kBegin, 0);
        p.insert(kCount, devValue("size") / kBlockDefault);
    } else if (TMiscDev::isOneOf(code, {security_reg_erase, security_reg_test_empty}))
        p.insert(kData, 255);
    else if (TMiscDev::isOneOf(code, {status_reg_read, status_reg_write, status_reg_verify}))
        p.insert(kData, devParam.value(QStringLiteral("status_reg_def")).toString());
}

QString TDev25::cmdEraseBlocksView(const TData& p) {
    const qint64 size = p.value(kSize).toLongLong();
    const qint64 begin = p.value(kBegin).toLongLong();
    const qint64 count = p.value(kCount).toLongLong();
    const qint64 first = TMiscDev::getProduct(begin, size);
    return QStringLiteral("0x%1..0x%2 (%3)")
        .arg(TMiscDev::getHexFromInt(first),
             TMiscDev::getHexFromInt(TMiscDev::getLastAddr(first, TMiscDev::getProduct(size, count))),
             TMiscDev::getViewDeviceSize(TMiscDev::getProduct(size, count)));
}

QString TDev25::cmdSecurityRegView(const TData& p) {
    const quint32 mask = p.value(kData).toUInt();
    QStringList regs;
    for (int i = 0; i < 32; ++i)
        if (mask >> i & 1) regs << QString::number(i + 1);
    return Lang.get(474) + regs.join(QStringLiteral(", "));
}

QString TDev25::ownView(const TCmdRow& row, const TData& p) const {
    using namespace CTagCmdCode;
    const QString code = QLatin1String(row.code);
    if (code == QLatin1String(ident))
        return Lang.get(473).arg(devParam.value(QStringLiteral("signature")).toString());
    if (TMiscDev::isOneOf(code, {erase_blocks, test_empty_blocks})) return cmdEraseBlocksView(p);
    if (TMiscDev::isOneOf(code, {security_reg_erase, security_reg_test_empty})) return cmdSecurityRegView(p);
    return p.value(kData).toString(); // status registers, unique ID
}

QStringList TDev25::getSecurityRegLines(int registers) {
    QStringList lines;
    for (int i = 0; i < registers; ++i) {
        // Registers past the eighth take their bit in the following bytes of the mask.
        const QString byte = i < 8 ? QStringLiteral("-") : QString::number(i / 8);
        lines
            << QStringLiteral("ckl|%1|-|e|%2|").arg(1 << (i % 8), 2, 16, QLatin1Char('0')).arg(byte) +
                   Lang.get(591).arg(i + 1).arg(i * kRegisterSize, 0, 16).arg(i * kRegisterSize + 255, 0, 16);
    }
    return lines;
}

TFormCmd* TDev25::formEraseBlocks(const TData& p) const {
    auto* form = new TFormCmd(p);
    // The block sizes the catalogue has opcodes for, and the command's own should it have none.
    QVariantList sizes;
    for (const QString& entry : devParam.value(QStringLiteral("erase_blocks")).toStringList())
        sizes << entry.section(QLatin1Char('|'), 1).toLongLong();
    sizes << p.value(kSize).toLongLong();
    QStringList texts;
    for (int i = 0; i < sizes.size(); ++i) {
        if (sizes.indexOf(sizes.at(i)) < i || sizes.at(i).toLongLong() <= 0) {
            sizes.removeAt(i--);
            continue;
        }
        texts << TMiscDev::getViewDeviceSize(sizes.at(i).toLongLong());
    }
    form->addChoice(kSize, Lang.get(585), texts, sizes)->setObjectName(kSize);
    const qint64 size = devValue("size");
    form->addInt(kBegin, Lang.get(586), 0, size)->setObjectName(kBegin);
    form->addInt(kCount, Lang.get(587), 1, size)->setObjectName(kCount);
    auto* view = new QLabel(form);
    connect(form, &TFormCmd::signalChanged, view,
            [form, view] { view->setText(cmdEraseBlocksView(form->getParam())); });
    form->addCompound(
        Lang.get(568), view, [](TData&) {},
        [this, form, size] {
            return checkEraseBlocks(form->getParam()) ? QString()
                                                      : Lang.get(569).arg(TMiscDev::getHexFromInt(qint64(0)),
                                                                          TMiscDev::getHexFromInt(size - 1));
        });
    form->changed();
    return form;
}

TFormCmd* TDev25::ownForm(const TCmdRow& row, const TData& p) const {
    using namespace CTagCmdCode;
    const QString code = QLatin1String(row.code);
    TFormCmd* form = nullptr;
    if (TMiscDev::isOneOf(code, {erase_blocks, test_empty_blocks})) form = formEraseBlocks(p);
    if (TMiscDev::isOneOf(code, {status_reg_read, status_reg_write, status_reg_verify})) {
        form = new TFormCmd(p);
        TWgtRegisterForm::addToForm(form, kData,
                                    devParam.value(QStringLiteral("status_reg_cfg")).toStringList(),
                                    code == QLatin1String(status_reg_read));
    }
    if (TMiscDev::isOneOf(code, {security_reg_erase, security_reg_test_empty})) {
        form = new TFormCmd(p);
        const int registers = int(devValue("security_reg_size") / kRegisterSize) & 255;
        TWgtRegisterForm::addToForm(form, kData, getSecurityRegLines(registers), false, true);
    }
    if (code == QLatin1String(unique_id_read)) {
        form = new TFormCmd(p);
        TWgtRegisterForm::addToForm(form, kData,
                                    {QStringLiteral("edr|FFFFFFFFFFFFFFFF|ro|-1|") + Lang.get(592)}, true);
    }
    return form;
}

bool TDev25::checkEraseBlocks(const TData& p) const {
    const qint64 size = p.value(kSize).toLongLong();
    const qint64 begin = p.value(kBegin).toLongLong();
    const qint64 count = p.value(kCount).toLongLong();
    // Counted in blocks, so that no product of hostile values can wrap.
    return size > 0 && count > 0 && TMiscDev::isRangeInside(begin, count, 0, devValue("size") / size);
}

bool TDev25::checkStatusReg(const TData& p) const {
    const int n = devParam.value(QStringLiteral("status_reg_def")).toString().size() / 2;
    return TMiscDev::getByteArrayFromHex(p.value(kData).toString()).size() == n;
}

bool TDev25::ownCheck(const TCmdRow& row, const TData& p) const {
    using namespace CTagCmdCode;
    const QString code = QLatin1String(row.code);
    if (TMiscDev::isOneOf(code, {ident, unique_id_read, status_reg_read})) return true;
    if (TMiscDev::isOneOf(code, {erase_blocks, test_empty_blocks})) return checkEraseBlocks(p);
    if (TMiscDev::isOneOf(code, {status_reg_write, status_reg_verify})) return checkStatusReg(p);
    bool ok = false; // the security register mask
    p.value(kData).toUInt(&ok);
    return ok;
}

IDeviceExec* TDev25::createExecObject(const TData& param) {
    return new TDev25Exec(param);
}
