#include "devices/TDev24CDevParam.h"

#include "app/TApp.h"
#include "app/TLang.h"
#include "devices/IDevice.h"
#include "devices/TDeviceList.h"
#include "misc/TNormCmdParam.h"
#include "misc/dev_misc.h"
#include "ui/TFormCmd.h"

#include <QCheckBox>
#include <QHBoxLayout>

void TDev24CDevParam::def(TData& p) {
    p.insert(addr, 0);
}

bool TDev24CDevParam::check(const TData& p) {
    bool ok = false;
    const int a = p.value(addr).toInt(&ok);
    return ok && a >= 0 && a < 8;
}

TFormCmd* TDev24CDevParam::form(const IDevice* dev, const TData& p) {
    auto* form = new TFormCmd(p);
    const unsigned mask = dev ? dev->getDevParam().value(QStringLiteral("addr_mask")).toUInt() : 7;
    const unsigned origin = p.value(addr).toUInt();
    auto* box = new QWidget(form);
    auto* row = new QHBoxLayout(box);
    row->setContentsMargins(0, 0, 0, 0);
    QList<QCheckBox*> pins;
    for (int bit = 2; bit >= 0; --bit) {
        auto* pin = new QCheckBox(Lang.get(589).arg(bit), box);
        pin->setObjectName(pin->text());
        pin->setChecked(origin >> bit & 1);
        if (!(mask >> bit & 1)) {
            pin->setEnabled(false);
            pin->setToolTip(Lang.get(590));
        }
        QObject::connect(pin, &QCheckBox::toggled, form, &TFormCmd::changed);
        row->addWidget(pin);
        pins.prepend(pin);
    }
    row->addStretch(1);
    form->addField(addr, Lang.get(588), box, [pins, origin] {
        // Bits above the three pins are not the form's: they stay for the check to judge.
        unsigned value = origin & ~7u;
        for (int bit = 0; bit < 3; ++bit)
            value |= unsigned(pins.at(bit)->isChecked()) << bit;
        return QVariant(value);
    });
    return form;
}
