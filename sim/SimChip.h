#pragma once

#include "SimReply.h"

#include <QString>
#include <QVariantMap>

// What a chip model is told about the chip in the socket.
struct SimChipInfo {
    QString name;
    QVariantMap params; // the chip's description file, parsed
    QString imageFile;  // empty: contents are not kept between runs
};

// A chip in the simulator's socket. The socket passes every family packet (command bytes 3 to 7; 1, the
// leave, and 2, the clock, arrive as hooks) after the programmer has selected a device.
class SimChip {
public:
    explicit SimChip(const SimChipInfo& info);
    virtual ~SimChip();

    virtual SimReply request(unsigned char cmd, const QByteArray& data) = 0;
    // The set-device payload, as the application's family built it.
    virtual void select(const QByteArray&) {}
    virtual void setClock(unsigned int) {}
    virtual void leave() {}
    // Models with a memory return it, so that --image can load and keep it.
    virtual QByteArray* contents() { return nullptr; }

    const SimChipInfo& info() const { return chipInfo; }
    // Fills the contents from the image file (missing bytes stay as they are) and writes them back.
    bool loadImage(QString& error);
    bool saveImage(QString& error);

private:
    SimChipInfo chipInfo;
};
