#pragma once

#include <QByteArray>
#include <QString>
#include <QVariantMap>

struct avr_t;

// A chip wired to the simulated board. It listens to the microcontroller's pins and buses itself, so
// the only thing the board asks of it is its memory, for the image file.
class BoardChip {
public:
    BoardChip(avr_t* avr, const QVariantMap& params);
    virtual ~BoardChip();
    BoardChip(const BoardChip&) = delete;
    BoardChip& operator=(const BoardChip&) = delete;

    // The bytes kept in the image file; empty for a part that keeps nothing.
    virtual QByteArray& contents() = 0;

    // Fills the contents from the file when it exists (missing bytes stay as they are).
    bool loadImage(const QString& file, QString& error);
    bool saveImage(const QString& file, QString& error);

protected:
    avr_t* mcu;
    QVariantMap param;

    // Simulated time, for write cycles and busy flags.
    unsigned long long now() const;
    unsigned long long cyclesOfUs(unsigned long us) const;
};
