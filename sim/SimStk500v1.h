#pragma once

#include "SimSocket.h"
#include "SimStreamProtocol.h"

// An Arduino running the ArduinoISP sketch (STK500 version 1) with an AVR in its socket. As the sketch,
// it keeps a word address from LOAD_ADDRESS, commits flash pages itself and doubles the address for
// the EEPROM; UNIVERSAL passes four instruction bytes through, the extended address among them.
class SimStk500v1 : public SimStreamProtocol {
public:
    explicit SimStk500v1(SimSocket& socket);

    bool take(QByteArray& request) override;
    QByteArray answer(const QByteArray& request) override;
    QByteArray refusal(const QByteArray& request) override;

    static constexpr int bufferSize = 256; // the sketch's page buffer

private:
    QByteArray parameter(unsigned char which) const;
    QByteArray programPage(const QByteArray& request);
    QByteArray readPage(const QByteArray& request);
    // One instruction through the chip; the byte it shifts out last.
    unsigned char instruction(unsigned char a, unsigned char b, unsigned char c, unsigned char d);
    void enterProgramming();
    // The extended address byte as the chip's own instruction carries it (word address bits 23-16).
    void sendExtended();
    static QByteArray inSync(const QByteArray& body = QByteArray());

    SimSocket& socket;
    int here = 0;     // word address
    int pageSize = 0; // bytes, from SET_DEVICE
    int extended = 0; // as the target last received it
};
