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
const QString kData = CTagCmdRegister::data, kSize = CTagCmdDev25EraseBlocks::size,
              kBegin = CTagCmdDev25EraseBlocks::begin, kCount = CTagCmdDev25EraseBlocks::count;
constexpr qint64 kBlockDefault = 65536;
constexpr int kRegisterSize = 256;

// ---- erase blocks and their empty test ----

void eraseBlocksDefaults(const TCmdFamily& dev, const TCmdRow&, TData& p) {
    p.insert(kSize, kBlockDefault);
    p.insert(kBegin, 0);
    p.insert(kCount, dev.devValue("size") / kBlockDefault);
}

QString eraseBlocksView(const TCmdFamily&, const TCmdRow&, const TData& p) {
    return TDev25::cmdEraseBlocksView(p);
}

// Counted in blocks, so that no product of hostile values can wrap.
bool eraseBlocksInside(const TData& p, qint64 deviceSize) {
    const qint64 size = p.value(kSize).toLongLong();
    const qint64 begin = p.value(kBegin).toLongLong();
    const qint64 count = p.value(kCount).toLongLong();
    return size > 0 && count > 0 && TMiscDev::isRangeInside(begin, count, 0, deviceSize / size);
}

bool eraseBlocksCheck(const TCmdFamily& dev, const TCmdRow&, const TData& p) {
    return eraseBlocksInside(p, dev.devValue("size"));
}

// The block sizes the catalogue has opcodes for, and the command's own should it have none.
void eraseBlockSizes(const TCmdFamily& dev, const TData& p, QVariantList& sizes, QStringList& texts) {
    for (const QString& entry : dev.devItem("erase_blocks").toStringList())
        sizes << entry.section(QLatin1Char('|'), 1).toLongLong();
    sizes << p.value(kSize).toLongLong();
    for (int i = 0; i < sizes.size(); ++i) {
        if (sizes.indexOf(sizes.at(i)) < i || sizes.at(i).toLongLong() <= 0) {
            sizes.removeAt(i--);
            continue;
        }
        texts << TMiscDev::getViewDeviceSize(sizes.at(i).toLongLong());
    }
}

TFormCmd* eraseBlocksForm(const TCmdFamily& dev, const TCmdRow&, const TData& p) {
    auto* form = new TFormCmd(p);
    QVariantList sizes;
    QStringList texts;
    eraseBlockSizes(dev, p, sizes, texts);
    form->addChoice(kSize, Lang.get(585), texts, sizes)->setObjectName(kSize);
    const qint64 size = dev.devValue("size");
    form->addInt(kBegin, Lang.get(586), 0, size)->setObjectName(kBegin);
    form->addInt(kCount, Lang.get(587), 1, size)->setObjectName(kCount);
    auto* view = new QLabel(form);
    QObject::connect(form, &TFormCmd::signalChanged, view,
                     [form, view] { view->setText(TDev25::cmdEraseBlocksView(form->getParam())); });
    form->addCompound(
        Lang.get(568), view, [](TData&) {},
        [form, size] {
            return eraseBlocksInside(form->getParam(), size)
                       ? QString()
                       : Lang.get(569).arg(TMiscDev::getHexFromInt(qint64(0)),
                                           TMiscDev::getHexFromInt(size - 1));
        });
    form->changed();
    return form;
}

const TCmdOwn eraseBlocks{eraseBlocksDefaults, eraseBlocksView, eraseBlocksForm, eraseBlocksCheck};

// ---- status registers ----

void statusDefaults(const TCmdFamily& dev, const TCmdRow&, TData& p) {
    p.insert(kData, dev.devItem("status_reg_def").toString());
}

QString dataView(const TCmdFamily&, const TCmdRow&, const TData& p) {
    return p.value(kData).toString();
}

// A read shows what it read; a write or verify edits the bytes.
TFormCmd* statusForm(const TCmdFamily& dev, const TCmdRow& row, const TData& p) {
    auto* form = new TFormCmd(p);
    TWgtRegisterForm::addToForm(form, kData, dev.devItem("status_reg_cfg").toStringList(),
                                row.op == TCmdOp::Read);
    return form;
}

// Exactly as many bytes as the part has.
bool statusCheck(const TCmdFamily& dev, const TCmdRow& row, const TData& p) {
    const int n = dev.devItem("status_reg_def").toString().size() / 2;
    return row.op == TCmdOp::Read || TMiscDev::getByteArrayFromHex(p.value(kData).toString()).size() == n;
}

const TCmdOwn statusReg{statusDefaults, dataView, statusForm, statusCheck};

// ---- security registers: erase and empty test take a mask of registers ----

void securityDefaults(const TCmdFamily&, const TCmdRow&, TData& p) {
    p.insert(kData, 255);
}

QString securityView(const TCmdFamily&, const TCmdRow&, const TData& p) {
    return TDev25::cmdSecurityRegView(p);
}

TFormCmd* securityForm(const TCmdFamily& dev, const TCmdRow&, const TData& p) {
    auto* form = new TFormCmd(p);
    const int registers = int(dev.devValue("security_reg_size") / kRegisterSize) & 255;
    TWgtRegisterForm::addToForm(form, kData, TDev25::getSecurityRegLines(registers), false, true);
    return form;
}

bool securityCheck(const TCmdFamily&, const TCmdRow&, const TData& p) {
    bool ok = false;
    p.value(kData).toUInt(&ok);
    return ok;
}

const TCmdOwn securityMask{securityDefaults, securityView, securityForm, securityCheck};

// ---- identification and unique ID ----

QString identView(const TCmdFamily& dev, const TCmdRow&, const TData&) {
    return Lang.get(473).arg(dev.devItem("signature").toString());
}

const TCmdOwn identity{nullptr, identView, nullptr, nullptr};

TFormCmd* uniqueIdForm(const TCmdFamily&, const TCmdRow&, const TData& p) {
    auto* form = new TFormCmd(p);
    TWgtRegisterForm::addToForm(form, kData, {QStringLiteral("edr|FFFFFFFFFFFFFFFF|ro|-1|") + Lang.get(592)},
                                true);
    return form;
}

const TCmdOwn uniqueId{nullptr, dataView, uniqueIdForm, nullptr};
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
        {ident, K::Own, O::Read, flash, &identity},
        {erase, K::Plain, O::Write, flash},
        {test_empty, K::Plain, O::Verify, flash},
        {erase_blocks, K::Own, O::Write, flash, &eraseBlocks},
        {test_empty_blocks, K::Own, O::Verify, flash, &eraseBlocks},
        {char_write, K::Char, O::Write, flash},
        {char_verify, K::Char, O::Verify, flash},
        {data_read, K::Data, O::Read, flash},
        {data_write, K::Data, O::Write, flash},
        {data_verify, K::Data, O::Verify, flash},
        {file_read, K::File, O::Read, flash},
        {file_write, K::File, O::Write, flash},
        {file_verify, K::File, O::Verify, flash},
        {status_reg_read, K::Own, O::Read, flash, &statusReg},
        {status_reg_write, K::Own, O::Write, flash, &statusReg},
        {status_reg_verify, K::Own, O::Verify, flash, &statusReg},
        {security_reg_erase, K::Own, O::Write, security, &securityMask},
        {security_reg_test_empty, K::Own, O::Verify, security, &securityMask},
        {security_reg_read, K::File, O::Read, security},
        {security_reg_write, K::File, O::Write, security},
        {security_reg_verify, K::File, O::Verify, security},
        {unique_id_read, K::Own, O::Read, flash, &uniqueId},
        {sfdp_reg_read, K::File, O::Read, sfdp},
        {leave, K::Leave, O::None, flash},
    };
    return rows;
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

IDeviceExec* TDev25::createExecObject(const TData& param) {
    return new TDev25Exec(param);
}
