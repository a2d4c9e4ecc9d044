#include "project/TPrjBuilder.h"

#include "devices/IDevice.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"

// Bound first, so that the family that will serve the command gives its defaults; bound again, since
// a new programmer or device changes the binding of every command after it.
int TPrjBuilder::addCmd(TDataPrj& prj, int idCfg, const QString& code, const TData& values, int pos) {
    const int id =
        prj.newCmd(TData{{CTagCmd::id_cfg, idCfg}, {CTagCmd::status, 1}, {CTagCmd::cmd, code}}, pos);
    prj.updCmdObjectAll();
    TData param = prj.getCmdData(id);
    {
        TLocker lock(prj.getMutex());
        TDataCmd* cmd = prj.getCmdObjectFromIdCmd(id);
        if (IDevice* group = cmd ? cmd->getGroupObject() : nullptr) group->getDefaultCmdParam(param);
    }
    for (auto it = values.cbegin(); it != values.cend(); ++it)
        param.insert(it.key(), it.value());
    prj.updCmdParam(id, param);
    prj.updCmdObjectAll();
    return id;
}

int TPrjBuilder::addSetDevice(TDataPrj& prj, int idCfg, const QString& device, const QString& file) {
    TData values{{CTagCmdProgSetDevice::device, device}, {CTagCmdProgSetDevice::file, file}};
    if (IDevice* dev = prj.createDevice(device, file)) dev->getDefaultParamCmdSetDevice(values);
    return addCmd(prj, idCfg, QString::fromLatin1(CTagCmdCode::set_device), values);
}
