#include "SimFrame.h"

#include "SimProtocol.h"

namespace SimFrameCodec {

unsigned char checkByte(const QByteArray& bytes) {
    unsigned int sum = 0;
    for (char c : bytes)
        sum += static_cast<unsigned char>(c);
    return static_cast<unsigned char>(0x100 - (sum & 0xFF));
}

QByteArray encode(unsigned char cmd, const QByteArray& data) {
    QByteArray f;
    f.reserve(data.size() + SimProtocol::FrameOverhead);
    f.append(static_cast<char>(SimProtocol::FrameStart)).append(static_cast<char>(cmd));
    f.append(static_cast<char>(data.size() & 0xFF)).append(static_cast<char>((data.size() >> 8) & 0xFF));
    f.append(data);
    f.append(static_cast<char>(checkByte(f)));
    return f;
}

QByteArray encodeError(unsigned short code) {
    QByteArray d;
    d.append(static_cast<char>(code & 0xFF)).append(static_cast<char>(code >> 8));
    return encode(SimProtocol::ErrorReply, d);
}

} // namespace SimFrameCodec

void SimFrameParser::feed(const char* bytes, int count) {
    pending.append(bytes, count);
    for (;;) {
        const int start = pending.indexOf(static_cast<char>(SimProtocol::FrameStart));
        if (start < 0) {
            pending.clear();
            return;
        }
        if (start > 0) pending.remove(0, start);
        if (pending.size() < 4) return;
        const int len = static_cast<unsigned char>(pending.at(2)) | static_cast<unsigned char>(pending.at(3))
                                                                        << 8;
        if (pending.size() < len + 5) return;
        SimFrame f;
        f.cmd = static_cast<unsigned char>(pending.at(1));
        f.data = pending.mid(4, len);
        f.raw = pending.left(len + 5);
        f.checkOk = SimFrameCodec::checkByte(f.raw) == 0;
        frames << f;
        pending.remove(0, len + 5);
    }
}

bool SimFrameParser::next(SimFrame& frame) {
    if (frames.isEmpty()) return false;
    frame = frames.takeFirst();
    return true;
}
