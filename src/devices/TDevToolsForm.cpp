#include "devices/TDevTools.h"

#include "app/TAppData.h"
#include "app/TLang.h"
#include "formats/ICRC.h"
#include "formats/TCRC.h"
#include "formats/TFormat.h"
#include "link/TSerialPort.h"
#include "project/CTagCmdCode.h"
#include "project/TCmdCode.h"
#include "project/TDataCfg.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"
#include "ui/TFormCmd.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>

#include <limits>
#include <memory>

namespace {
constexpr qint64 int32Min = std::numeric_limits<qint32>::min();
constexpr qint64 int32Max = std::numeric_limits<qint32>::max();
constexpr qint64 int64Max = std::numeric_limits<qint64>::max();

// The configuration of a command record: its id_cfg, or the one its command belongs to.
int cfgOf(const TData& p) {
    const int idCfg = p.value(CTagCmd::id_cfg, -1).toInt();
    return idCfg >= 0 ? idCfg : ProjectData.getIdCfgFromIdCmd(p.value(CTagCmd::id_cmd, -1).toInt());
}

// "3. Delay (100 ms)": the command's place in its configuration, its name and its view.
QString cmdTitle(int pos, TDataCmd* cmd) {
    QString title = QStringLiteral("%1. %2").arg(pos + 1).arg(CmdCode.getName(cmd->getCmdCode()));
    IDevice* group = cmd->getGroupObject();
    const QString view = group ? group->getViewCmdParam(cmd->getData(), nullptr) : QString();
    return view.isEmpty() ? title : QStringLiteral("%1 (%2)").arg(title, view);
}

// A choice among items of the project, listed by fill under the project's lock.
template <class Fill> TFormCmd* projectChoice(const TData& p, const char* key, int caption, Fill fill) {
    auto* form = new TFormCmd(p);
    QStringList texts;
    QVariantList values;
    {
        TLocker lock(ProjectData.getMutex());
        fill(texts, values);
    }
    form->addChoice(key, Lang.get(caption), texts, values);
    return form;
}
} // namespace

TFormCmd* TDevTools::cmdDelayForm(const TData& p) {
    auto* form = new TFormCmd(p);
    form->addInt(CTagCmdToolsDelay::value, Lang.get(521), 0, int32Max,
                 TFormCmd::rangeAndDefault(Lang.get(500).arg(0).arg(int32Max), Lang.get(501).arg(delayDef)))
        ->setObjectName(CTagCmdToolsDelay::value);
    return form;
}

TFormCmd* TDevTools::cmdCounterForm(const TData& p) {
    using namespace CTagCmdToolsCounter;
    auto* form = new TFormCmd(p);
    form->addInt(value, Lang.get(522), int32Min, int32Max)->setObjectName(value);
    form->addInt(limit, Lang.get(523), int32Min, int32Max)->setObjectName(limit);
    form->addInt(delta, Lang.get(524), int32Min, int32Max)->setObjectName(delta);
    return form;
}

TFormCmd* TDevTools::cmdJampForm(const TData& p) {
    return projectChoice(p, CTagCmdToolsJamp::to_cmd, 525, [&p](QStringList& texts, QVariantList& values) {
        for (TDataCmd* cmd : ProjectData.getCmdListCfg(cfgOf(p))) {
            texts.append(cmdTitle(texts.size(), cmd));
            values.append(cmd->getUIN());
        }
    });
}

TFormCmd* TDevTools::cmdProcessForm(const TData& p) {
    auto* form = new TFormCmd(p);
    form->addFile(CTagCmdToolsProcess::file, Lang.get(526), QString(), false)
        ->setObjectName(CTagCmdToolsProcess::file);
    return form;
}

TFormCmd* TDevTools::cmdExecuteForm(const TData& p) {
    return projectChoice(p, CTagCmdToolsExecute::cfg, 527, [](QStringList& texts, QVariantList& values) {
        for (TDataCfg* cfg : ProjectData.getCfgList()) {
            texts.append(cfg->getName());
            values.append(cfg->getUIN());
        }
    });
}

TFormCmd* TDevTools::cmdCalcCRCForm(const TData& p) {
    using namespace CTagCmdToolsCalcCRC;
    auto* form = new TFormCmd(p);
    QStringList names = TCRC::getAlgListView();
    // An alias such as the default "CRC-32" names a model as well as the listed name does.
    const QString name = p.value(crc_name).toString();
    std::unique_ptr<ICRC> model(names.contains(name) ? nullptr : TCRC::createCRCObject(name));
    if (model) names.prepend(name);
    form->addChoice(crc_name, Lang.get(528), names, QVariantList(names.begin(), names.end()));
    form->addFile(file, Lang.get(529), TFormat::getMaskFormats(), false)->setObjectName(file);
    const QStringList keys = TFormat::getFormatKeys();
    QComboBox* formats = form->addChoice(format, Lang.get(530), TFormat::getViewFormats(),
                                         QVariantList(keys.begin(), keys.end()), true);
    form->followFileFormat(file, formats, false);
    form->addHex(addr, Lang.get(531), 0, int64Max)->setObjectName(addr);
    form->addHex(count, Lang.get(532), 0, int64Max)->setObjectName(count);
    form->addHex(fill, Lang.get(533), 0, 0xFF)->setObjectName(fill);
    return form;
}

TFormCmd* TDevTools::cmdSetProgForm(const TData& p) {
    using namespace CTagCmdToolsSetProg;
    auto* form = new TFormCmd(p);
    const QStringList names = AppData.progName.getNameList();
    form->addChoice(prog, Lang.get(534), names, QVariantList(names.begin(), names.end()));
    QCheckBox* alt = form->addCheck(alt_enabled, Lang.get(535));
    alt->setObjectName(alt_enabled);
    // The port list shows "name (maker description)"; the record keeps the bare port name.
    auto* port = new QComboBox(form);
    port->setObjectName(alt_port);
    port->setEditable(true);
    port->addItems(TSerialPort::getListPortName());
    port->setEditText(p.value(alt_port).toString());
    port->setEnabled(alt->isChecked());
    QObject::connect(alt, &QCheckBox::toggled, port, &QWidget::setEnabled);
    QObject::connect(port, &QComboBox::editTextChanged, form, &TFormCmd::changed);
    form->addField(
        alt_port, Lang.get(536), port,
        [port] { return QVariant(TSerialPort::getPortNameFromFullName(port->currentText().trimmed())); },
        [port, alt] {
            return alt->isChecked() && port->currentText().trimmed().isEmpty() ? Lang.get(494) : QString();
        });
    return form;
}
