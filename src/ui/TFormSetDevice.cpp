#include "ui/TFormSetDevice.h"

#include "app/TLang.h"
#include "devices/IDevice.h"
#include "project/CTagPrj.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"
#include "ui/TDialogSelectDevice.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
// The record without the keys the model gives every command.
TData withoutModelKeys(TData p) {
    TDataCmd::removeModelKeys(p);
    return p;
}
} // namespace

TFormSetDevice::TFormSetDevice(const TData& param, QWidget* parent)
    : TFormCmd(param, parent), current(param) {
    auto* row = new QWidget(this);
    auto* rowLayout = new QHBoxLayout(row);
    rowLayout->setContentsMargins(0, 0, 0, 0);
    name = new QLabel(row);
    name->setObjectName(QStringLiteral("device"));
    auto* choose = new QPushButton(Lang.get(538), row);
    choose->setObjectName(QStringLiteral("choose"));
    rowLayout->addWidget(name, 1);
    rowLayout->addWidget(choose);
    connect(choose, &QPushButton::clicked, this, &TFormSetDevice::slotChoose);
    addCompound(
        Lang.get(537), row, [this](TData& p) { write(p); },
        [this] { return getDevice().isEmpty() ? Lang.get(547) : QString(); });

    auto* box = new QWidget(this);
    deviceBox = new QVBoxLayout(box);
    deviceBox->setContentsMargins(0, 0, 0, 0);
    addCompound(
        QString(), box, [this](TData& p) { merge(p); },
        [this] { return deviceForm ? deviceForm->getError() : QString(); });
    buildDeviceForm();
}

QString TFormSetDevice::getDevice() const {
    return current.value(CTagCmdProgSetDevice::device).toString();
}

void TFormSetDevice::setDevice(const QString& device, const QString& file) {
    if (device == getDevice() && file == current.value(CTagCmdProgSetDevice::file).toString()) return;
    TData fresh = getOrigin();
    for (const QString& key : withoutModelKeys(fresh).keys())
        fresh.remove(key);
    fresh.insert(CTagCmdProgSetDevice::device, device);
    fresh.insert(CTagCmdProgSetDevice::file, file);
    if (IDevice* dev = ProjectData.createDevice(device, file)) dev->getDefaultParamCmdSetDevice(fresh);
    current = fresh;
    replaced = true;
    buildDeviceForm();
    changed();
}

void TFormSetDevice::slotChoose() {
    TDialogSelectDevice dialog(this);
    dialog.select(getDevice());
    if (dialog.exec() == QDialog::Accepted) setDevice(dialog.getSelectedName(), dialog.getSelectedFile());
}

// The settings form comes from the device object of the project, made for this name and file.
void TFormSetDevice::buildDeviceForm() {
    delete deviceWidget;
    const QString device = getDevice();
    IDevice* dev =
        device.isEmpty()
            ? nullptr
            : ProjectData.createDevice(device, current.value(CTagCmdProgSetDevice::file).toString());
    if (dev) {
        // A record written before the device had a setting shows, and then keeps, the setting's default.
        TData defaults = current;
        dev->getDefaultParamCmdSetDevice(defaults);
        for (auto it = defaults.cbegin(); it != defaults.cend(); ++it) {
            if (!current.contains(it.key())) current.insert(it.key(), it.value());
        }
    }
    name->setText(device);
    name->setToolTip(dev ? dev->getDevParam().value(QStringLiteral("info")).toString() : QString());
    deviceWidget = dev ? dev->getWgtCmdSetDeviceParam(current) : nullptr;
    deviceForm = qobject_cast<TFormCmd*>(deviceWidget);
    if (!deviceWidget) return;
    deviceBox->addWidget(deviceWidget);
    if (deviceForm) connect(deviceForm, &TFormCmd::signalChanged, this, &TFormSetDevice::changed);
}

// A new device drops the settings of the one before it.
void TFormSetDevice::write(TData& p) const {
    if (replaced) {
        for (const QString& key : withoutModelKeys(p).keys())
            p.remove(key);
    }
    for (auto it = current.cbegin(); it != current.cend(); ++it)
        p.insert(it.key(), it.value());
}

void TFormSetDevice::merge(TData& p) const {
    if (!deviceForm) return;
    const TData settings = deviceForm->getParam();
    for (auto it = settings.cbegin(); it != settings.cend(); ++it)
        p.insert(it.key(), it.value());
}
