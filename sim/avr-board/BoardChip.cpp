#include "BoardChip.h"

#include <QFile>

extern "C" {
#include <sim_avr.h>
}

BoardChip::BoardChip(avr_t* avr, const QVariantMap& params) : mcu(avr), param(params) {}

BoardChip::~BoardChip() = default;

bool BoardChip::loadImage(const QString& file, QString& error) {
    QFile f(file);
    if (file.isEmpty() || !f.exists()) return true;
    if (!f.open(QIODevice::ReadOnly)) {
        error = QStringLiteral("cannot read image %1: %2").arg(file, f.errorString());
        return false;
    }
    QByteArray& mem = contents();
    const QByteArray bytes = f.read(mem.size());
    mem.replace(0, bytes.size(), bytes);
    return true;
}

bool BoardChip::saveImage(const QString& file, QString& error) {
    if (file.isEmpty()) return true;
    QFile f(file);
    const QByteArray& mem = contents();
    if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate) || f.write(mem) != mem.size()) {
        error = QStringLiteral("cannot write image %1: %2").arg(file, f.errorString());
        return false;
    }
    return true;
}

unsigned long long BoardChip::now() const {
    return mcu->cycle;
}

unsigned long long BoardChip::cyclesOfUs(unsigned long us) const {
    return static_cast<unsigned long long>(mcu->frequency) * us / 1000000ULL;
}
