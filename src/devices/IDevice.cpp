#include "devices/IDevice.h"

#include "ui/TFormCmd.h"

IDevice::IDevice(const QString& code, QObject* parent) : QObject(parent), devCode(code) {}

IDevice::~IDevice() = default;

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
