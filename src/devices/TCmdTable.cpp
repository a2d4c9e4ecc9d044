#include "devices/TCmdTable.h"

#include "devices/IDevice.h"
#include "misc/TNormCmdParam.h"
#include "misc/dev_misc.h"
#include "project/CTagCmdCode.h"

namespace {
constexpr int fillDefault = 0xFF;
constexpr bool leaveWithDuration = true; // every family's leave carries a duration
} // namespace

QStringList TCmdTable::codes(const TCmdRows& rows) {
    QStringList out;
    for (const TCmdRow& r : rows)
        out << QLatin1String(r.code);
    return out;
}

TCmdRows TCmdTable::ownRows(std::initializer_list<TCmdOwnRow> own) {
    TCmdRows rows;
    for (const TCmdOwnRow& r : own) {
        const bool divider = QLatin1String(r.code) == QLatin1String(CTagCmdCode::separator);
        const TCmdKind kind = divider ? TCmdKind::Separator : r.own ? TCmdKind::Own : TCmdKind::Plain;
        rows.append({r.code, kind, TCmdOp::None, 0, r.own});
    }
    return rows;
}

const TCmdRow* TCmdTable::find(const TCmdRows& rows, const QString& code) {
    for (const TCmdRow& r : rows)
        if (r.kind != TCmdKind::Separator && code == QLatin1String(r.code)) return &r;
    return nullptr;
}

bool TCmdTable::defaults(const TCmdRow& row, const IDevice* dev, TData& p, qint64 begin, qint64 size) {
    switch (row.kind) {
    case TCmdKind::Plain:
        return true;
    case TCmdKind::Clock:
        TNormCmdParam::cmdSetCLKDef(dev->getDevConnect(), p);
        return true;
    case TCmdKind::Leave:
        TNormCmdParam::cmdLeaveDef(p, leaveWithDuration);
        return true;
    case TCmdKind::Char:
        TNormCmdParam::writeParamRWVChar(p, begin, size, fillDefault);
        return true;
    case TCmdKind::Data:
        TNormCmdParam::writeDataRWVData(p, begin, QString());
        return true;
    case TCmdKind::File:
        TNormCmdParam::defRWVFile(p, begin, size);
        return true;
    default:
        return false;
    }
}

bool TCmdTable::view(const TCmdRow& row, const TData& p, QString& text) {
    switch (row.kind) {
    case TCmdKind::Plain:
        text.clear();
        return true;
    case TCmdKind::Clock:
        text = TMiscDev::getViewFreqValue(int(TMiscDev::getCLK(p)));
        return true;
    case TCmdKind::Leave:
        text = TNormCmdParam::cmdLeaveView(p, leaveWithDuration);
        return true;
    case TCmdKind::Char:
        text = TNormCmdParam::cmdRWVCharView(p);
        return true;
    case TCmdKind::Data:
        text = TNormCmdParam::cmdRWVDataView(p);
        return true;
    case TCmdKind::File:
        text = TNormCmdParam::cmdRWVFileView(p);
        return true;
    default:
        return false;
    }
}

bool TCmdTable::form(const TCmdRow& row, const IDevice* dev, const TData& p, qint64 begin, qint64 size,
                     TFormCmd*& form) {
    switch (row.kind) {
    case TCmdKind::Plain:
        form = nullptr;
        return true;
    case TCmdKind::Clock:
        form = TNormCmdParam::cmdSetCLKForm(dev->getDevConnect(), p);
        return true;
    case TCmdKind::Leave:
        form = TNormCmdParam::cmdLeaveForm(dev, p, leaveWithDuration);
        return true;
    case TCmdKind::Char:
        form = TNormCmdParam::formRWVChar(p, begin, size);
        return true;
    case TCmdKind::Data:
        form = TNormCmdParam::formRWVData(p, begin, size);
        return true;
    case TCmdKind::File:
        form = TNormCmdParam::formRWVFile(p, begin, size);
        return true;
    default:
        return false;
    }
}

bool TCmdTable::check(const TCmdRow& row, const TData& p, qint64 begin, qint64 size, bool& valid) {
    switch (row.kind) {
    case TCmdKind::Plain:
        valid = true;
        return true;
    case TCmdKind::Clock:
        valid = TNormCmdParam::cmdSetCLKCheck(p);
        return true;
    case TCmdKind::Leave:
        valid = TNormCmdParam::cmdLeaveCheck(p, leaveWithDuration);
        return true;
    case TCmdKind::Char:
        valid = TNormCmdParam::checkParamRWVChar(p, begin, size);
        return true;
    case TCmdKind::Data:
        valid = TNormCmdParam::checkParamRWVData(p, begin, size);
        return true;
    case TCmdKind::File:
        valid = TNormCmdParam::checkParamRWVFile(p, begin, size);
        return true;
    default:
        return false;
    }
}
