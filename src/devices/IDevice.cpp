#include "devices/IDevice.h"

#include "app/TLang.h"
#include "ui/TFormCmd.h"

IDevice::IDevice(const QString& code, QObject* parent) : QObject(parent), devCode(code) {}

IDevice::~IDevice() = default;

QString IDevice::getNotSupportedText(const QString&) const {
    return QString();
}

QString IDevice::notSupportedText(const IDevice* group, const QString& code, const QString& name) {
    const QString own = group ? group->getNotSupportedText(code) : QString();
    return own.isEmpty() ? Lang.get(387).arg(name) : own;
}

bool IDevice::getResetStatus() const {
    return devParam.value(QStringLiteral("reset"), false).toBool();
}

QString IDevice::getDevConnect() const {
    return devParam.value(QStringLiteral("prg_section")).toString();
}

QWidget* IDevice::keepForm(TFormCmd* form) const {
    lastForm = form;
    return form;
}

TData IDevice::formParam(const TData& param) const {
    return lastForm ? lastForm->getParam() : param;
}
