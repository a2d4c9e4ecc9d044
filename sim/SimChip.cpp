#include "SimChip.h"

#include <QFile>

SimChip::SimChip(const SimChipInfo& info) : chipInfo(info) {}

SimChip::~SimChip() = default;

bool SimChip::loadImage(QString& error) {
    QByteArray* mem = contents();
    if (!mem || chipInfo.imageFile.isEmpty()) return true;
    QFile f(chipInfo.imageFile);
    if (!f.exists()) return true;
    if (!f.open(QIODevice::ReadOnly)) {
        error = QStringLiteral("cannot read image %1: %2").arg(chipInfo.imageFile, f.errorString());
        return false;
    }
    const QByteArray bytes = f.read(mem->size());
    mem->replace(0, bytes.size(), bytes);
    return true;
}

bool SimChip::saveImage(QString& error) {
    QByteArray* mem = contents();
    if (!mem || chipInfo.imageFile.isEmpty()) return true;
    QFile f(chipInfo.imageFile);
    if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate) || f.write(*mem) != mem->size()) {
        error = QStringLiteral("cannot write image %1: %2").arg(chipInfo.imageFile, f.errorString());
        return false;
    }
    return true;
}
