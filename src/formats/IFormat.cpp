#include "formats/IFormat.h"

#include "app/TLang.h"
#include "misc/dev_misc.h"

#include <QFileInfo>

IFormat::IFormat(const QString& file_name, qint64 addr_file, qint64 addr_device, qint64 last_address,
                 qint64 chunk)
    : file_name(file_name), addr_file(addr_file), addr_device(addr_device), last_address(last_address),
      chunk(chunk), pos_file(addr_file), pos_device(addr_device) {}

bool IFormat::openFile(TFormatMode mode, QIODevice::OpenMode flags) {
    error_text.clear();
    pos_file = addr_file;
    pos_device = addr_device;
    file.setFileName(file_name);
    if (mode == FormatModeRead && !file.exists()) return fail(Lang.get(417));
    if ((flags & QIODevice::ReadOnly) && file.exists()) {
        const QString reason = checkReadable(file_name, maxFileSize);
        if (!reason.isEmpty()) return fail(reason);
    }
    if (!file.open(flags)) return fail(Lang.get(419).arg(file.errorString()));
    return true;
}

QString IFormat::checkReadable(const QString& name, qint64 limit) {
    const QFileInfo info(name);
    if (!info.isFile()) return Lang.get(1410).arg(name);
    if (info.size() > limit) return Lang.get(1411).arg(name, TMiscDev::getViewDeviceSize(limit));
    return QString();
}

bool IFormat::fail(const QString& text) {
    error_text = text;
    return false;
}
