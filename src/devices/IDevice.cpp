#include "devices/IDevice.h"

#include "app/TLang.h"
#include "project/CTagPrj.h"
#include "project/TCmdCode.h"
#include "ui/TFormCmd.h"

IDevice::IDevice(const QString& code, QObject* parent) : QObject(parent), devCode(code) {}

IDevice::~IDevice() = default;

QString IDevice::getViewCmdName(const TData& param) const {
    return CmdCode.getName(param.value(CTagCmd::cmd).toString());
}

TData IDevice::getChangedParam(const TData& param) const {
    return formParam(param);
}

void IDevice::normCmdParam(TData&) {}

bool IDevice::checkCmdSetDeviceParam(const TData&) {
    return true;
}

void IDevice::getDefaultParamCmdSetDevice(TData&) {}

QWidget* IDevice::getWgtCmdSetDeviceParam(const TData&) {
    return nullptr;
}

QByteArray IDevice::getCmdSetDeviceExec(const TData&) {
    return QByteArray();
}

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
