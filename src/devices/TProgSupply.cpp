#include "devices/TProgSupply.h"

#include "app/TLang.h"
#include "devices/TDevProg.h"
#include "link/TProg.h"
#include "ui/TFormCmd.h"

#include <QCheckBox>
#include <QLineEdit>

namespace {
// Captions and hints of the language table.
constexpr int textVcc = 509, textVpp = 510, textIcc = 507, textIpp = 508, textOcp = 511;
constexpr int textDefault = 502, textCurrentRange = 503, textCurrentDefault = 504, textOutOfRange = 490;

const QString kOcp = QLatin1String(CTagCmdProgSetVICC::ocp);

// A voltage or current judged the way the command's check judges it: by its rounded tenths.
void addTenths(TFormCmd* form, const QString& key, const QString& caption, double min, double max,
               const QString& hint) {
    auto* edit = new QLineEdit(QString::number(form->getOrigin().value(key).toDouble()), form);
    edit->setObjectName(key);
    QObject::connect(edit, &QLineEdit::textEdited, form, &TFormCmd::changed);
    form->addField(
        key, caption, TFormCmd::withHint(edit, hint, form),
        [edit] { return QVariant(edit->text().trimmed().toDouble()); },
        [edit, min, max] {
            return TDevProg::isTenthsInRange(edit->text().trimmed(), min, max)
                       ? QString()
                       : Lang.get(textOutOfRange).arg(min).arg(max);
        });
}
} // namespace

const TProgSupply TProgSupply::vcc({CTagCmdProgSetVCC::vcc, textVcc, &TProg::getVccRange, &TProg::getVccDef});
const TProgSupply TProgSupply::vpp({CTagCmdProgSetVPP::vpp, textVpp, &TProg::getVppRange, &TProg::getVppDef});
const TProgSupply
    TProgSupply::vicc({CTagCmdProgSetVICC::vcc, textVcc, &TProg::getVccRange, &TProg::getVccDef},
                      {CTagCmdProgSetVICC::icc, textIcc, &TProg::getIccRange, &TProg::getIccDef});
const TProgSupply
    TProgSupply::vipp({CTagCmdProgSetVIPP::vpp, textVpp, &TProg::getVppRange, &TProg::getVppDef},
                      {CTagCmdProgSetVIPP::ipp, textIpp, &TProg::getIppRange, &TProg::getIppDef});

TProgSupply::TProgSupply(const Quantity& v) : volt(v), current(v), limited(false) {}

TProgSupply::TProgSupply(const Quantity& v, const Quantity& i) : volt(v), current(i), limited(true) {}

void TProgSupply::rangeOf(TProg* prog, const Quantity& q, double& min, double& max) {
    min = max = 0;
    if (prog) (prog->*q.range)(min, max);
}

double TProgSupply::defaultOf(TProg* prog, const Quantity& q) {
    return prog ? (prog->*q.def)() : 0.0;
}

void TProgSupply::defaults(TProg* prog, TData& p) const {
    p.insert(volt.key, defaultOf(prog, volt));
    if (!limited) return;
    p.insert(current.key, defaultOf(prog, current));
    p.insert(kOcp, false);
}

bool TProgSupply::inRange(TProg* prog, const Quantity& q, const TData& p) {
    double min, max;
    rangeOf(prog, q, min, max);
    return TDevProg::isTenthsInRange(p.value(q.key), min, max);
}

bool TProgSupply::check(TProg* prog, const TData& p) const {
    return prog && inRange(prog, volt, p) && (!limited || inRange(prog, current, p));
}

QString TProgSupply::view(const TData& p) const {
    QString text = QString::number(p.value(volt.key).toDouble(), 'f', 1) + QStringLiteral(" V");
    if (!limited) return text;
    text += QStringLiteral(", %1 mA").arg(QString::number(p.value(current.key).toDouble(), 'f', 3));
    return p.value(kOcp).toBool() ? text + QStringLiteral(", OCP") : text;
}

TFormCmd* TProgSupply::form(TProg* prog, const TData& p) const {
    auto* form = new TFormCmd(p);
    double min, max;
    rangeOf(prog, volt, min, max);
    addTenths(form, volt.key, Lang.get(volt.caption), min, max,
              Lang.get(textDefault).arg(defaultOf(prog, volt)));
    if (!limited) return form;
    rangeOf(prog, current, min, max);
    addTenths(form, current.key, Lang.get(current.caption), min, max,
              TFormCmd::rangeAndDefault(Lang.get(textCurrentRange).arg(min).arg(max),
                                        Lang.get(textCurrentDefault).arg(defaultOf(prog, current))));
    form->addCheck(kOcp, Lang.get(textOcp))->setObjectName(kOcp);
    return form;
}
