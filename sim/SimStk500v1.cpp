#include "SimStk500v1.h"

namespace {
const char stkOk = 0x10;
const char stkFailed = 0x11;
const char stkUnknown = 0x12;
const char stkInSync = 0x14;
const char stkNoSync = 0x15;
const unsigned char eop = 0x20;

enum Cmd : unsigned char {
    GetSync = 0x30,
    GetSignOn = 0x31,
    GetParameter = 0x41,
    SetDevice = 0x42,
    SetDeviceExt = 0x45,
    EnterProgmode = 0x50,
    LeaveProgmode = 0x51,
    LoadAddress = 0x55,
    Universal = 0x56,
    ProgPage = 0x64,
    ReadPage = 0x74,
    ReadSign = 0x75,
};
const unsigned char hwVersion = 2, swMajor = 1, swMinor = 18;
const unsigned char loadExtended = 0x4D, commitPage = 0x4C;

// Bytes between the command byte and the end mark, -1 while unknown (a page still arriving).
int bodySize(const QByteArray& b) {
    switch (uchar(b.at(0))) {
    case GetParameter:
        return 1;
    case SetDevice:
        return 20;
    case SetDeviceExt:
        return 5;
    case LoadAddress:
        return 2;
    case Universal:
        return 4;
    case ProgPage:
        return b.size() < 3 ? -1 : 3 + (uchar(b.at(1)) << 8 | uchar(b.at(2)));
    case ReadPage:
        return 3;
    default:
        return 0;
    }
}

QByteArray le16(int v) {
    return QByteArray(1, char(v & 0xFF)).append(char(v >> 8 & 0xFF));
}
} // namespace

SimStk500v1::SimStk500v1(SimSocket& s) : socket(s) {}

QByteArray SimStk500v1::inSync(const QByteArray& body) {
    return QByteArray(1, stkInSync) + body + QByteArray(1, stkOk);
}

bool SimStk500v1::take(QByteArray& request) {
    if (buffer.isEmpty()) return false;
    // A lone end mark is what a host sends to get back in step; the sketch answers it alone.
    const int body = uchar(buffer.at(0)) == eop ? -2 : bodySize(buffer);
    if (body == -1) return false;
    const int size = body == -2 ? 1 : 2 + body;
    if (buffer.size() < size) return false;
    request = buffer.left(size);
    buffer.remove(0, size);
    return true;
}

QByteArray SimStk500v1::refusal(const QByteArray&) {
    return QByteArray(1, stkInSync).append(stkFailed);
}

QByteArray SimStk500v1::answer(const QByteArray& request) {
    if (request.size() == 1 || uchar(request.back()) != eop) return QByteArray(1, stkNoSync);
    switch (uchar(request.at(0))) {
    case SetDevice:
        pageSize = uchar(request.at(13)) << 8 | uchar(request.at(14));
        return inSync();
    case GetSync:
    case SetDeviceExt:
        return inSync();
    case GetSignOn:
        return inSync("AVR ISP");
    case GetParameter:
        return inSync(parameter(uchar(request.at(1))));
    case EnterProgmode:
        enterProgramming();
        return inSync();
    case LeaveProgmode:
        socket.deselect();
        return inSync();
    case LoadAddress:
        here = uchar(request.at(1)) | uchar(request.at(2)) << 8;
        return inSync();
    case Universal:
        return inSync(QByteArray(1, char(instruction(uchar(request.at(1)), uchar(request.at(2)),
                                                     uchar(request.at(3)), uchar(request.at(4))))));
    case ProgPage:
        return programPage(request);
    case ReadPage:
        return readPage(request);
    case ReadSign: {
        QByteArray sig;
        for (unsigned char i = 0; i < 3; ++i)
            sig.append(char(instruction(0x30, 0x00, i, 0x00)));
        return inSync(sig);
    }
    default:
        return QByteArray(1, stkUnknown);
    }
}

QByteArray SimStk500v1::parameter(unsigned char which) const {
    switch (which) {
    case 0x80:
        return QByteArray(1, char(hwVersion));
    case 0x81:
        return QByteArray(1, char(swMajor));
    case 0x82:
        return QByteArray(1, char(swMinor));
    case 0x93:
        return QByteArray(1, 'S');
    default:
        return QByteArray(1, '\0');
    }
}

// The sketch holds the target in reset at the level the part wants and sends programming enable.
void SimStk500v1::enterProgramming() {
    QByteArray payload(9, '\0');
    payload[3] = char(socket.chip().info().params.value("reset_pol").toInt());
    socket.select(payload);
    extended = 0;
    instruction(0xAC, 0x53, 0x00, 0x00);
}

unsigned char SimStk500v1::instruction(unsigned char a, unsigned char b, unsigned char c, unsigned char d) {
    // The chip model takes the extended address as byte-address bits 23-16, the real part word bits.
    if (a == loadExtended) extended = c;
    const unsigned char third = a == loadExtended ? uchar(c << 1) : c;
    const SimReply r = socket.request(7, QByteArray(1, '\0') + char(a) + char(b) + char(third) + char(d));
    return r.isError || r.data.size() < 4 ? 0xFF : uchar(r.data.at(3));
}

void SimStk500v1::sendExtended() {
    socket.request(7, QByteArray(1, '\0') + char(loadExtended) + char(0) + char(extended << 1 | here >> 15) +
                          char(0));
}

QByteArray SimStk500v1::programPage(const QByteArray& request) {
    const int length = uchar(request.at(1)) << 8 | uchar(request.at(2));
    const char memory = request.at(3);
    const QByteArray data = request.mid(4, length);
    if (length > bufferSize) return QByteArray(1, stkFailed);
    if (memory == 'E') {
        socket.request(6, le16(here * 2) + data);
        return QByteArray(1, stkInSync).append(stkOk);
    }
    if (memory != 'F') return QByteArray(1, stkInSync).append(stkFailed);
    if (pageSize < 2) return QByteArray(1, stkInSync).append(stkFailed);
    // Words go into the part's page buffer; the page is committed whenever the next word lies in
    // another page of the size SET_DEVICE gave, and at the end.
    const int words = pageSize / 2;
    for (int at = 0, n = 0; at < length; at += n) {
        n = qMin(length - at, (words - here % words) * 2);
        socket.request(4, le16(here * 2 & 0xFFFF) + data.mid(at, n));
        here += n / 2;
        instruction(commitPage, uchar((here - 1) >> 8), uchar(here - 1), 0);
    }
    return QByteArray(1, stkInSync).append(stkOk);
}

QByteArray SimStk500v1::readPage(const QByteArray& request) {
    const int length = uchar(request.at(1)) << 8 | uchar(request.at(2));
    const char memory = request.at(3);
    SimReply r;
    if (memory == 'E') {
        r = socket.request(5, le16(here * 2) + le16(length));
    } else if (memory == 'F') {
        sendExtended();
        r = socket.request(3, le16(here * 2 & 0xFFFF) + le16(length));
        here += length / 2;
    } else {
        return QByteArray(1, stkInSync).append(stkFailed);
    }
    const QByteArray data = r.isError ? QByteArray(length, char(0xFF)) : r.data;
    return QByteArray(1, stkInSync) + data + QByteArray(1, stkOk);
}
