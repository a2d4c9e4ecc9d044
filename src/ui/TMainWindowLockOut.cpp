#include "ui/TMainWindow.h"

#include "app/TLang.h"
#include "devices/IDevice.h"
#include "misc/TLockOut.h"
#include "misc/dev_misc.h"
#include "project/CTagCmdCode.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"

// The run's checked fuse writes whose values would leave the part unreachable over serial
// programming: one question names them with their parts; the answer holds for this run only.
bool TMainWindow::confirmLockOut(int idCfg) {
    QStringList parts, reasons;
    {
        TLocker lock(ProjectData.getMutex());
        for (TDataCmd* cmd : ProjectData.getCmdListCfg(idCfg)) {
            IDevice* device = cmd->getDeviceObject();
            if (!cmd->getEnable() || cmd->getCmdCode() != QLatin1String(CTagCmdCode::fuse_write) || !device)
                continue;
            const QByteArray fuses =
                TMiscDev::getByteArrayFromHex(cmd->getParam().value(QStringLiteral("data")).toString());
            const QStringList found = TLockOut::reasons(device->getDevParam(), fuses);
            if (found.isEmpty()) continue;
            parts << device->getDeviceCode();
            reasons << found;
        }
    }
    TLockOut::setAllowed(idCfg, false);
    if (reasons.isEmpty()) return true;
    parts.removeDuplicates();
    reasons.removeDuplicates();
    const QString text =
        Lang.get(1106).arg(parts.join(QStringLiteral(", ")), reasons.join(QLatin1Char('\n')));
    if (ask(text, QMessageBox::Yes | QMessageBox::No) != QMessageBox::Yes) return false;
    TLockOut::setAllowed(idCfg, true);
    return true;
}
