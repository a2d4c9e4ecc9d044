#include "formats/TFormatBIN.h"

#include "app/TLang.h"
#include "misc/dev_misc.h"

TFormatBIN::TFormatBIN(const QString& format, const QString& file_name, qint64 addr_file, qint64 addr_device,
                       qint64 last_address, qint64 chunk)
    : IFormat(file_name, addr_file, addr_device, last_address, chunk), format(format.toLower()) {}

bool TFormatBIN::open(TFormatMode mode) {
    if (mode == FormatModeRead) {
        if (!openFile(mode, QIODevice::ReadOnly)) return false;
        if (file.size() < addr_file) {
            file.close();
            return fail(Lang.get(418));
        }
        return true;
    }
    const QIODevice::OpenMode flags =
        format == "bin+" ? QIODevice::ReadWrite : QIODevice::WriteOnly | QIODevice::Truncate;
    return openFile(mode, flags);
}

// No fill value is inserted: a file shorter than the range gives short, then empty pieces.
bool TFormatBIN::read(long long& addr, QByteArray& data) {
    data.clear();
    pos_device = addr;
    const qint64 n = TMiscDev::getSize(pos_device, last_address, chunk);
    if (n <= 0) return true;
    if (!file.seek(pos_file)) return fail(Lang.get(420).arg(file.errorString()));
    pos_file += n;
    pos_device += n;
    data.resize(int(n));
    const qint64 got = file.read(data.data(), n);
    if (got < 0) {
        data.clear();
        return fail(Lang.get(420).arg(file.errorString()));
    }
    data.resize(int(got));
    return true;
}

bool TFormatBIN::write(long long pos, QByteArray data) {
    pos_file = pos;
    if (!file.seek(pos_file) || file.write(data) != data.size()) return fail(file.errorString());
    pos_file += data.size();
    return true;
}

bool TFormatBIN::close() {
    if (!file.isOpen()) return true;
    const bool flushed = !file.isWritable() || file.flush();
    const QString text = file.errorString();
    file.close();
    return flushed || fail(text);
}
