#include "project/TCmdProblem.h"

#include "app/TLang.h"
#include "devices/TDeviceList.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"
#include "project/TPrjText.h"

QString TCmdProblem::get(const QString& name, const TData& data) {
    if (!data.value(CTagCmd::valid_dev).toBool()) {
        const QString text = Lang.get(387).arg(name);
        if (data.value(CTagCmd::cmd).toString() != QLatin1String(CTagCmdCode::set_device)) return text;
        const QString file = data.value(CTagCmdProgSetDevice::file).toString();
        const QString reason = file.isEmpty() ? QString() : TDeviceList::checkDescription(file);
        return reason.isEmpty() ? text : text + QStringLiteral(": ") + reason;
    }
    if (!data.value(CTagCmd::valid_param).toBool()) return TPrjText::getInvalidParamText(name, data);
    return QString();
}
