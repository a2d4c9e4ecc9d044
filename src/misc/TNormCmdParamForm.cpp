// The editing forms of the shared parameter handling. They live apart from the defaults and checks so
// that those stay free of widgets, but they judge a record only through the same checks.

#include "misc/TNormCmdParam.h"

#include "app/CApp.h"
#include "app/TLang.h"
#include "app/TTypes.h"
#include "devices/IDevice.h"
#include "formats/TFormat.h"
#include "link/TProg.h"
#include "misc/dev_misc.h"
#include "project/CTagPrj.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"
#include "ui/TFormCmd.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

#include <functional>
#include <limits>

namespace {
const QString kAddrDevice = CTagCmdRWV::addr_device;
const QString kCount = CTagCmdRWV::count;
const QString kState = CTagCmdLeave::state;

using Valid = std::function<bool(const TData&)>;
using Count = std::function<qint64(const TData&)>;

qint64 countOf(const TData& p) {
    return p.value(kCount).toLongLong();
}

qint64 dataCountOf(const TData& p) {
    return TMiscDev::getByteArrayFromHex(p.value(CTagCmdRWV::data).toString()).size();
}

QString hexRange(qint64 first, qint64 count) {
    return QStringLiteral("0x%1..0x%2")
        .arg(TMiscDev::getHexFromInt(first), TMiscDev::getHexFromInt(first + qMax<qint64>(count, 1) - 1));
}

void addDeviceNote(TFormCmd* form, qint64 begin, qint64 size) {
    form->addNote(QString(),
                  Lang.get(560).arg(TMiscDev::getHexFromInt(begin), TMiscDev::getHexFromInt(begin + size - 1),
                                    TMiscDev::getViewDeviceSize(size)));
}

void addAddress(TFormCmd* form, qint64 begin, qint64 size) {
    form->addHex(kAddrDevice, Lang.get(561), begin, begin + size - 1)->setObjectName(kAddrDevice);
}

// The last row shows the range the command covers; it is invalid when the command list's own check
// refuses the edited record. Literal data is also refused beyond the size a data command may carry.
void addRangeRow(TFormCmd* form, qint64 begin, qint64 size, const Valid& valid, const Count& count,
                 bool literal = false) {
    auto* label = new QLabel(form);
    QObject::connect(form, &TFormCmd::signalChanged, label, [form, label, count] {
        const TData p = form->getParam();
        label->setText(hexRange(p.value(kAddrDevice).toLongLong(), count(p)));
    });
    form->addCompound(
        Lang.get(568), label, [](TData&) {},
        [form, begin, size, valid, count, literal] {
            const TData p = form->getParam();
            if (valid(p)) return QString();
            if (literal && count(p) > CApp::rwv_data_max_size)
                return Lang.get(570).arg(CApp::rwv_data_max_size);
            return Lang.get(569).arg(TMiscDev::getHexFromInt(begin),
                                     TMiscDev::getHexFromInt(begin + size - 1));
        });
    form->changed();
}

// Pin-state choices in the order of the programmer's pin-type letters.
struct PinStates {
    QString letters;
    QStringList texts;
};

PinStates pinStates(const TProg* prog) {
    PinStates s;
    if (prog) return {prog->getPinsType(), prog->getPinsTypeView()};
    for (int i = 0; i < 9; ++i) {
        s.letters += TNormCmdParam::getNormIOStateView(i);
        s.texts << TNormCmdParam::getNormIOStateForm(i);
    }
    return s;
}
} // namespace

// ---- read, write and verify ----

TFormCmd* TNormCmdParam::formRWVChar(const TData& p, qint64 begin, qint64 size) {
    auto* form = new TFormCmd(p);
    addDeviceNote(form, begin, size);
    addAddress(form, begin, size);
    form->addHex(kCount, Lang.get(562), 1, size)->setObjectName(kCount);
    form->addHex(CTagCmdRWV::fill_char, Lang.get(563), 0, 255)->setObjectName(CTagCmdRWV::fill_char);
    addRangeRow(
        form, begin, size, [begin, size](const TData& r) { return checkParamRWVChar(r, begin, size); },
        countOf);
    return form;
}

TFormCmd* TNormCmdParam::formRWVData(const TData& p, qint64 begin, qint64 size) {
    auto* form = new TFormCmd(p);
    addDeviceNote(form, begin, size);
    addAddress(form, begin, size);
    form->addHexData(CTagCmdRWV::data, Lang.get(564), true)->setObjectName(CTagCmdRWV::data);
    addRangeRow(
        form, begin, size, [begin, size](const TData& r) { return checkParamRWVData(r, begin, size); },
        dataCountOf, true);
    return form;
}

TFormCmd* TNormCmdParam::formRWVFile(const TData& p, qint64 begin, qint64 size) {
    auto* form = new TFormCmd(p);
    // A read writes the file, so its chooser asks where to save.
    const bool forSave = p.value(CTagCmd::cmd).toString().endsWith(QLatin1String("_read"));
    addDeviceNote(form, begin, size);
    form->addFile(CTagCmdRWV::file, Lang.get(565), TFormat::getMaskFormats(), forSave)
        ->setObjectName(CTagCmdRWV::file);
    // Stored as the upper-case key ("HEX", "IHEX"), as projects have always kept it.
    QVariantList keys;
    for (const QString& key : TFormat::getFormatKeys())
        keys.append(key.toUpper());
    QComboBox* format =
        form->addChoice(CTagCmdRWV::format, Lang.get(566), TFormat::getViewFormats(), keys, true);
    format->setObjectName(CTagCmdRWV::format);
    form->followFileFormat(CTagCmdRWV::file, format, forSave);
    form->addHex(CTagCmdRWV::addr_file, Lang.get(567), 0, std::numeric_limits<qint64>::max())
        ->setObjectName(CTagCmdRWV::addr_file);
    addAddress(form, begin, size);
    form->addHex(kCount, Lang.get(562), 1, size)->setObjectName(kCount);
    addRangeRow(
        form, begin, size, [begin, size](const TData& r) { return checkParamRWVFile(r, begin, size); },
        countOf);
    return form;
}

#define RWV_FORMS(Space, reader)                                                                             \
    TFormCmd* TNormCmdParam::cmdRWV##Space##CharForm(const IDevice* dev, const TData& p) {                   \
        qint64 b, s;                                                                                         \
        reader(dev, b, s);                                                                                   \
        return formRWVChar(p, b, s);                                                                         \
    }                                                                                                        \
    TFormCmd* TNormCmdParam::cmdRWV##Space##DataForm(const IDevice* dev, const TData& p) {                   \
        qint64 b, s;                                                                                         \
        reader(dev, b, s);                                                                                   \
        return formRWVData(p, b, s);                                                                         \
    }                                                                                                        \
    TFormCmd* TNormCmdParam::cmdRWV##Space##FileForm(const IDevice* dev, const TData& p) {                   \
        qint64 b, s;                                                                                         \
        reader(dev, b, s);                                                                                   \
        return formRWVFile(p, b, s);                                                                         \
    }

RWV_FORMS(, readDevData)
RWV_FORMS(Flash, readDevDataFlash)
RWV_FORMS(EEPROM, readDevDataEEPROM)

// ---- pin states ----

TFormCmd* TNormCmdParam::cmdLeaveForm(const IDevice* dev, const TData& p, bool withDuration) {
    auto* form = new TFormCmd(p);
    QStringList pins;
    const TProg* prog = pinsOf(p.value(CTagCmd::id_cmd, -1).toInt(), dev, pins);
    const PinStates states = pinStates(prog);
    const QString origin = p.value(kState).toString();
    // Without a programmer the pins are not known: the pins the state text names are offered.
    for (int i = 0; !prog && i < origin.size(); ++i)
        pins << Lang.get(595).arg(i + 1);

    auto* box = new QWidget(form);
    auto* rows = new QFormLayout(box);
    rows->setContentsMargins(0, 0, 0, 0);
    QList<QComboBox*> combos;
    for (int i = 0; i < pins.size(); ++i) {
        auto* combo = new QComboBox(box);
        combo->addItems(states.texts);
        combo->setCurrentIndex(
            qMax(0, states.letters.indexOf(i < origin.size() ? origin.at(i) : QChar('-'))));
        QObject::connect(combo, QOverload<int>::of(&QComboBox::currentIndexChanged), form,
                         &TFormCmd::changed);
        combo->setObjectName(pins.at(i));
        rows->addRow(pins.at(i), combo);
        combos << combo;
    }
    form->addCompound(QString(), box, [combos, states, origin](TData& r) {
        QString state;
        for (const QComboBox* combo : combos)
            state += combo->currentIndex() >= 0 ? states.letters.at(combo->currentIndex()) : QLatin1Char('-');
        state += origin.mid(combos.size());
        // Pins left out at the end are not changed either: the same states keep the text as it was.
        if (state == origin.leftJustified(state.size(), QLatin1Char('-'))) return;
        r.insert(kState, state);
    });
    if (withDuration)
        form->addInt(CTagCmdLeave::duration, Lang.get(571), 0, 0xFFFF, Lang.get(572).arg(0).arg(0xFFFF))
            ->setObjectName(CTagCmdLeave::duration);
    return form;
}

QString TNormCmdParam::getNormIOStateForm(int state) {
    switch (state) {
    case 0:
        return Lang.get(575);
    case 1:
        return Lang.get(576);
    case 2:
        return Lang.get(577);
    case 3:
        return Lang.get(578);
    case 4:
        return Lang.get(579);
    case 5:
        return Lang.get(580);
    case 6:
        return Lang.get(581);
    case 7:
        return Lang.get(582);
    case 8:
        return Lang.get(583);
    default:
        return QStringLiteral("?");
    }
}

// ---- clock ----

TFormCmd* TNormCmdParam::cmdSetCLKForm(const QString& group, const TData& p) {
    auto* form = new TFormCmd(p);
    TLocker lock(ProjectData.getMutex());
    TDataCmd* cmd = ProjectData.getCmdObjectFromIdCmd(p.value(CTagCmd::id_cmd, -1).toInt());
    const TProg* prog = cmd ? cmd->getProgObject() : nullptr;
    if (!prog) {
        form->addInt(CTagCmdSetCLK::clk, Lang.get(573), 0, std::numeric_limits<int>::max())
            ->setObjectName(CTagCmdSetCLK::clk);
        return form;
    }
    bool isList = false;
    int min = 0, max = 0;
    QVector<int> values;
    prog->getCLK(group, isList, min, max, values);
    if (!isList) {
        form->addInt(CTagCmdSetCLK::clk, Lang.get(573), min, max,
                     Lang.get(574).arg(TMiscDev::getViewFreqValue(min), TMiscDev::getViewFreqValue(max)))
            ->setObjectName(CTagCmdSetCLK::clk);
        return form;
    }
    // In list mode the command keeps the list key; the user chooses among the frequencies.
    QStringList texts;
    QVariantList keys;
    for (int n : values) {
        texts << TMiscDev::getViewFreqValue(prog->getCLKValue(group, unsigned(n)));
        keys << n;
    }
    form->addChoice(CTagCmdSetCLK::clk, Lang.get(573), texts, keys)->setObjectName(CTagCmdSetCLK::clk);
    return form;
}
