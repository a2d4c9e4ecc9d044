#include "SimSocket.h"

#include "SimProtocol.h"

SimSocket::SimSocket(std::unique_ptr<SimChip> chip) : model(std::move(chip)) {}

void SimSocket::select(const QByteArray& payload) {
    selected = true;
    model->select(payload);
}

void SimSocket::deselect() {
    selected = false;
}

SimReply SimSocket::request(unsigned char cmd, const QByteArray& data) {
    if (!selected) return SimReply::fail(ErrNoDevice);
    if (cmd == SimProtocol::FamilyLeave) {
        // Two bytes of duration, then one state per pin.
        if (data.size() < 2 || data.size() > 2 + pinCount) return SimReply::fail(ErrLength);
        for (int i = 2; i < data.size(); ++i)
            if (static_cast<unsigned char>(data.at(i)) > pinStateMax) return SimReply::fail(ErrRange);
        model->leave();
        return SimReply::ok();
    }
    if (cmd == SimProtocol::FamilySetClk) {
        if (data.size() != 4) return SimReply::fail(ErrLength);
        unsigned int hz = 0;
        for (int i = 3; i >= 0; --i)
            hz = hz << 8 | static_cast<unsigned char>(data.at(i));
        if (hz == 0 || hz > clockMax) return SimReply::fail(ErrRange);
        model->setClock(hz);
        return SimReply::ok();
    }
    return model->request(cmd, data);
}
