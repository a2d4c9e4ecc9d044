#include "formats/TFormat.h"

#include "formats/TFormatBIN.h"
#include "formats/TFormatHEX.h"
#include "formats/TFormatIHEX.h"

#include "app/TLang.h"

namespace {
constexpr int text_warning_hex = 1016;
// The HEX dialect writes Extended Segment Address records for a range whose last record address lies
// in this window; other tools read them as segments.
constexpr qint64 segment_window_first = 0x10000;
constexpr qint64 segment_window_last = 0xFFFFF;
} // namespace

TFormat::TFormat(QString key, QString file, long long addr_file, long long addr_device,
                 long long last_address, long long chunk) {
    // An unknown key is not an error: it falls back to Intel HEX.
    if (key == "bin" || key == "bin+")
        format = std::make_unique<TFormatBIN>(key, file, addr_file, addr_device, last_address, chunk);
    else if (key == "ihex")
        format = std::make_unique<TFormatIHEX>(file, addr_file, addr_device, last_address, chunk);
    else
        format = std::make_unique<TFormatHEX>(file, addr_file, addr_device, last_address, chunk);
}

TFormat::~TFormat() = default;

bool TFormat::open(TFormatMode mode) {
    return format->open(mode);
}

bool TFormat::read(long long& addr, QByteArray& data) {
    return format->read(addr, data);
}

bool TFormat::write(long long pos, QByteArray data) {
    return format->write(pos, std::move(data));
}

bool TFormat::close() {
    return format->close();
}

QString TFormat::getErrorText() const {
    return format->getErrorText();
}

QStringList TFormat::getViewFormats() {
    return {"HEX", "BIN", "BIN+", "Intel HEX"};
}

QStringList TFormat::getFormatKeys() {
    return {"hex", "bin", "bin+", "ihex"};
}

QString TFormat::getViewFormat(const QString& key) {
    const int i = getFormatKeys().indexOf(key.toLower());
    return i >= 0 ? getViewFormats().at(i) : key.toUpper();
}

bool TFormat::isFormat(const QString& key) {
    return getFormatKeys().contains(key.toLower());
}

QString TFormat::getKey(const QString& key) {
    return key == "bin" || key == "bin+" || key == "ihex" ? key : QStringLiteral("hex");
}

QString TFormat::getMaskFormats() {
    return "*.bin *.hex";
}

QString TFormat::getWarning(const QString& key, qint64 lastAddress) {
    if (getKey(key) != QLatin1String("hex") || lastAddress < segment_window_first ||
        lastAddress > segment_window_last)
        return QString();
    return Lang.get(text_warning_hex);
}
