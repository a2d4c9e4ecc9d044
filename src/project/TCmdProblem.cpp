#include "project/TCmdProblem.h"

#include "app/TLang.h"
#include "devices/IDevice.h"
#include "devices/TDeviceList.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"
#include "project/TPrjText.h"

QString TCmdProblem::get(const QString& name, const TData& data, const IDevice* group) {
    if (!data.value(CTagCmd::valid_dev).toBool()) {
        const QString code = data.value(CTagCmd::cmd).toString();
        const QString text = IDevice::notSupportedText(group, code, name);
        if (code != QLatin1String(CTagCmdCode::set_device)) return text;
        const QString file = data.value(CTagCmdProgSetDevice::file).toString();
        const QString reason = file.isEmpty() ? QString() : TDeviceList::checkDescription(file);
        return reason.isEmpty() ? text : text + QStringLiteral(": ") + reason;
    }
    if (!data.value(CTagCmd::valid_param).toBool()) return TPrjText::getInvalidParamText(name, data);
    return QString();
}
