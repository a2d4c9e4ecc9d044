#include "devices/TCmdFamily.h"

#include "project/CTagPrj.h"
#include "ui/TFormCmd.h"

TCmdFamily::TCmdFamily(const QString& code, const TData& param, const TCmdRows& table,
                       const TSpaces& spaceKeys, const QStringList& offered)
    : IDevice(code), rows(table), cmdList(offered.isEmpty() ? TCmdTable::codes(table) : offered),
      spaces(spaceKeys) {
    setDevParam(param);
}

const TCmdRow* TCmdFamily::rowOf(const TData& p) const {
    return TCmdTable::find(rows, p.value(CTagCmd::cmd).toString());
}

// The offered list may hold separators, which are no commands.
bool TCmdFamily::supportCmd(const QString& code) const {
    return TCmdTable::find(rows, code) && cmdList.contains(code);
}

QStringList TCmdFamily::getSupportCmdList() const {
    return cmdList;
}

void TCmdFamily::getDefaultCmdParam(TData& p) {
    const TCmdRow* row = rowOf(p);
    if (!row) return;
    qint64 begin, size;
    spaceRange(*row, begin, size);
    const TCmdOwn& own = ownOf(*row);
    if (!TCmdTable::defaults(*row, this, p, begin, size) && own.defaults) own.defaults(*this, *row, p);
}

QString TCmdFamily::getViewCmdParam(const TData& p, QWidget*) const {
    const TCmdRow* row = rowOf(p);
    QString text;
    if (!row || TCmdTable::view(*row, p, text)) return text;
    const TCmdOwn& own = ownOf(*row);
    return own.view ? own.view(*this, *row, p) : QString();
}

QWidget* TCmdFamily::getFormCmdParam(const TData& p) const {
    const TCmdRow* row = rowOf(p);
    TFormCmd* form = nullptr;
    if (row) {
        qint64 begin, size;
        spaceRange(*row, begin, size);
        const TCmdOwn& own = ownOf(*row);
        if (!TCmdTable::form(*row, this, p, begin, size, form) && own.form) form = own.form(*this, *row, p);
    }
    return keepForm(form);
}

bool TCmdFamily::checkCmdParam(const TData& p) {
    const TCmdRow* row = rowOf(p);
    if (!row) return false;
    qint64 begin, size;
    spaceRange(*row, begin, size);
    bool valid = false;
    if (TCmdTable::check(*row, p, begin, size, valid)) return valid;
    const TCmdOwn& own = ownOf(*row);
    return !own.check || own.check(*this, *row, p);
}

void TCmdFamily::spaceRange(const TCmdRow& row, qint64& begin, qint64& size) const {
    const TSpaceKeys keys = row.space < spaces.size() ? spaces.at(row.space) : TSpaceKeys{nullptr, nullptr};
    begin = keys.begin ? devValue(keys.begin) : 0;
    size = keys.size ? devValue(keys.size) : 0;
}

const TCmdOwn& TCmdFamily::ownOf(const TCmdRow& row) {
    static const TCmdOwn none{nullptr, nullptr, nullptr, nullptr};
    return row.kind == TCmdKind::Own && row.own ? *row.own : none;
}
