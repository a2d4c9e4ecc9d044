#include "devices/TDevProg.h"

#include "app/TLang.h"
#include "devices/TDevTools.h"
#include "devices/TPairStringList.h"
#include "devices/TSignature.h"
#include "link/TProg.h"
#include "misc/dev_misc.h"
#include "project/CTagCmdCode.h"
#include "project/TDataPrj.h"
#include "ui/TDialogSelectDevice.h"
#include "ui/TFormCmd.h"
#include "ui/TFormSetDevice.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

namespace {
// "W25Q80=SPI flash" lines from a route table whose targets are configuration ids.
QString routeToLines(const QString& route) {
    QStringList lines;
    for (const auto& pair : TSignature::getAutoRouteTable(route)) {
        const QString name = ProjectData.getNameCfgFromIdCfg(pair.second.toInt());
        lines.append(pair.first + '=' + (name.isEmpty() ? pair.second : name));
    }
    return lines.join('\n');
}

// The route table of the lines; a target is a configuration's name, or else an id as stored. reason
// gets why a line cannot be read.
QString linesToRoute(const QString& text, QString* reason) {
    QStringList pairs;
    const QStringList lines = text.split('\n');
    for (int i = 0; i < lines.size(); ++i) {
        const QString line = lines[i].trimmed();
        if (line.isEmpty()) continue;
        const int eq = line.indexOf('=');
        const QString target = eq < 0 ? line : line.mid(eq + 1).trimmed();
        int id = ProjectData.getIdCfgFromNameCfg(target);
        bool ok = id >= 0;
        if (!ok) id = target.toInt(&ok);
        if (eq < 0 || !ok) {
            if (reason && reason->isEmpty()) *reason = Lang.get(520).arg(i + 1).arg(target);
            continue;
        }
        pairs.append(line.left(eq).trimmed() + '=' + QString::number(id));
    }
    return pairs.join('|');
}
} // namespace

// One pin-state choice per pin that the device's connection uses. A state the programmer does not offer
// stays selected and is marked; an unedited form gives the record's state back as it was written.
TFormCmd* TDevProg::cmdSetIOForm(TProg* prog, const TData& p) {
    const QString key = CTagCmdProgSetIO::state;
    auto* form = new TFormCmd(p);
    if (!prog) {
        form->addNote(QString(), Lang.get(556));
        form->addText(key, Lang.get(552))->setObjectName(key);
        return form;
    }
    IDevice* dev = deviceOf(p);
    const QStringList pins = prog->getPinsConnect(dev ? dev->getDevConnect() : QString(), 0);
    const QString codes = prog->getPinsType();
    const QStringList views = prog->getPinsTypeView();
    const QString origin = p.value(key).toString();
    auto* box = new QWidget(form);
    auto* layout = new QFormLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    QList<QComboBox*> boxes;
    for (int i = 0; i < pins.size(); ++i) {
        const QChar c = i < origin.size() ? origin[i] : QLatin1Char('-');
        auto* choice = new QComboBox(box);
        choice->setObjectName(QStringLiteral("%1_%2").arg(key).arg(i));
        choice->addItems(views);
        if (!codes.contains(c)) choice->addItem(QString(c));
        choice->setCurrentIndex(codes.contains(c) ? codes.indexOf(c) : views.size());
        QObject::connect(choice, QOverload<int>::of(&QComboBox::currentIndexChanged), form,
                         &TFormCmd::changed);
        layout->addRow(pins[i], choice);
        boxes.append(choice);
    }
    auto state = [boxes, codes, origin] {
        QString s;
        for (int i = 0; i < boxes.size(); ++i) {
            const int index = boxes[i]->currentIndex();
            s += index < codes.size() ? codes[index] : origin[i];
        }
        return s;
    };
    const int n = pins.size();
    form->addCompound(
        QString(), box,
        [key, state, origin, n](TData& r) {
            const QString s = state();
            r.insert(key, s == origin.left(n).leftJustified(n, QLatin1Char('-')) ? origin : s);
        },
        [boxes, codes, pins] {
            for (int i = 0; i < boxes.size(); ++i) {
                if (boxes[i]->currentIndex() >= codes.size()) return pins[i] + ' ' + Lang.get(515);
            }
            return QString();
        });
    return form;
}

TFormCmd* TDevProg::cmdResetForm(TProg* prog, const TData& p) {
    int min = 0, max = 0;
    if (prog) prog->getReset(min, max);
    const int def = prog ? prog->getResetDef() : 0;
    auto* form = new TFormCmd(p);
    const QString key = CTagCmdProgReset::duration;
    auto* edit = new QLineEdit(QString::number(p.value(key).toInt()), form);
    edit->setObjectName(key);
    QObject::connect(edit, &QLineEdit::textEdited, form, &TFormCmd::changed);
    const QString hint = TFormCmd::rangeAndDefault(Lang.get(500).arg(min).arg(max), Lang.get(501).arg(def));
    form->addField(
        key, Lang.get(506), TFormCmd::withHint(edit, hint, form),
        [edit] { return QVariant(edit->text().trimmed().toInt()); },
        [edit, min, max] {
            bool ok = false;
            const int d = edit->text().trimmed().toInt(&ok);
            return ok && isResetInRange(d, min, max) ? QString() : Lang.get(514).arg(min).arg(max);
        });
    return form;
}

TFormCmd* TDevProg::cmdGeneratorForm(TProg* prog, const TData& p) {
    using namespace CTagCmdProgGenerator;
    bool fqList = false, dtShow = false, dtList = false;
    int fqMin = 0, fqMax = 0, dtMin = 0, dtMax = 0;
    QVector<int> fqValues, dtValues;
    if (prog) prog->getFreq(fqList, fqMin, fqMax, fqValues, dtShow, dtList, dtMin, dtMax, dtValues);
    auto* form = new TFormCmd(p);
    if (fqList) {
        QStringList texts;
        QVariantList values;
        for (int v : fqValues) {
            texts.append(TMiscDev::getViewFreqValue(v));
            values.append(v);
        }
        form->addChoice(freq, Lang.get(512), texts, values);
    } else {
        form->addInt(freq, Lang.get(512), fqMin, fqMax, Lang.get(505).arg(fqMin).arg(fqMax))
            ->setObjectName(freq);
    }
    // A duty the programmer does not offer stays as it is.
    if (!dtShow) return form;
    if (dtList) {
        QStringList texts;
        QVariantList values;
        for (int v : dtValues) {
            texts.append(QStringLiteral("%1 %").arg(v));
            values.append(v);
        }
        form->addChoice(duty_cycle, Lang.get(513), texts, values);
    } else {
        form->addInt(duty_cycle, Lang.get(513), dtMin, dtMax)->setObjectName(duty_cycle);
    }
    return form;
}

TFormCmd* TDevProg::cmdSetDeviceForm(const TData& p) {
    return new TFormSetDevice(p);
}

TFormCmd* TDevProg::cmdAutoDetectForm(const TData& p) {
    using namespace CTagCmdProgAutoDetect;
    auto* form = new TFormCmd(p);
    QStringList texts;
    QVariantList values;
    for (const QString& family : TSignature::getAutoFamilyList()) {
        texts.append(TDialogSelectDevice::getFamilyView(family));
        values.append(family);
    }
    form->addChoice(name, Lang.get(516), texts, values);
    const QString origin = p.value(route).toString();
    auto* edit = new QPlainTextEdit(routeToLines(origin), form);
    edit->setObjectName(route);
    QObject::connect(edit, &QPlainTextEdit::textChanged, form, &TFormCmd::changed);
    form->addField(
        route, Lang.get(517), edit,
        [edit, origin] {
            const QString table = linesToRoute(edit->toPlainText(), nullptr);
            // An unedited table keeps the record's own spelling (blanks, a trailing "|").
            return QVariant(TSignature::getAutoRouteTable(table) == TSignature::getAutoRouteTable(origin)
                                ? origin
                                : table);
        },
        [edit] {
            QString reason;
            linesToRoute(edit->toPlainText(), &reason);
            return reason;
        });
    form->addCheck(stop, Lang.get(518))->setObjectName(stop);
    form->addCheck(execute, Lang.get(519))->setObjectName(execute);
    return form;
}
