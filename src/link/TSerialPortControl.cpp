// Port control of TSerialPort: thin wrappers over the owned QSerialPort with the index and text
// conventions of the programmer descriptions and the settings lists.
#include "link/TSerialPort.h"

#include "app/TLang.h"
#include "link/TPortLock.h"
#include "link/TProg.h"
#include "link/bridge/IBridge.h"

// The text of an earlier exchange must not stand for a failed open. A port another run of this
// application holds is refused before the system is asked, naming that run.
bool TSerialPort::open(OpenMode mode) {
    errorText.clear();
    timeOutFlag = false;
    if (bridge) bridge->restart();
    QString heldBy;
    if (!TPortLock::claim(port->portName(), this, ownerName, &heldBy)) {
        errorText = Lang.get(1303).arg(port->portName(), heldBy);
        return false;
    }
    if (port->open(QIODevice::OpenMode(static_cast<int>(mode)))) return true;
    TPortLock::release(this);
    return false;
}

bool TSerialPort::open(const QString& name, OpenMode mode) {
    port->setPortName(name);
    return open(mode);
}

void TSerialPort::close() {
    port->close();
    TPortLock::release(this);
}
bool TSerialPort::isOpen() const {
    return port->isOpen();
}
void TSerialPort::setPortName(const QString& name) {
    port->setPortName(name);
}
QString TSerialPort::getPortName() const {
    return port->portName();
}

bool TSerialPort::setBaudRate(unsigned int baud) {
    return port->setBaudRate(static_cast<qint32>(baud));
}
unsigned int TSerialPort::getBaudRate() const {
    return static_cast<unsigned int>(port->baudRate());
}

bool TSerialPort::setDataBits(unsigned char index) {
    if (index > 3) return false;
    return port->setDataBits(static_cast<QSerialPort::DataBits>(QSerialPort::Data5 + index));
}
int TSerialPort::getDataBits() const {
    return port->dataBits();
}

bool TSerialPort::setParity(Parity p) {
    return port->setParity(static_cast<QSerialPort::Parity>(p));
}
bool TSerialPort::setParity(unsigned char index) {
    static const Parity order[] = {NoParity, OddParity, EvenParity, MarkParity, SpaceParity};
    if (index > 4) return false;
    return setParity(order[index]);
}
bool TSerialPort::setParity(const QString& text) {
    const int i = getListParity().indexOf(text);
    return i < 0 ? setParity(UnknownParity) : setParity(static_cast<unsigned char>(i));
}
int TSerialPort::getParity() const {
    return port->parity();
}

bool TSerialPort::setStopBits(StopBits s) {
    return port->setStopBits(static_cast<QSerialPort::StopBits>(s));
}
// Descriptions are expected to give 0 ... 2; anything beyond is refused rather than guessed.
bool TSerialPort::setStopBits(unsigned char index) {
    static const StopBits order[] = {OneStop, OneAndHalfStop, TwoStop};
    if (index > 2) return false;
    return setStopBits(order[index]);
}
bool TSerialPort::setStopBits(const QString& text) {
    const int i = getListStopBits().indexOf(text);
    return i < 0 ? setStopBits(UnknownStopBits) : setStopBits(static_cast<unsigned char>(i));
}
int TSerialPort::getStopBits() const {
    return port->stopBits();
}

bool TSerialPort::setFlowControl(FlowControl f) {
    return port->setFlowControl(static_cast<QSerialPort::FlowControl>(f));
}
bool TSerialPort::setFlowControl(unsigned char index) {
    return setFlowControl(static_cast<FlowControl>(index));
}
bool TSerialPort::setFlowControl(const QString& text) {
    const int i = QStringList{"None", "Hardware", "Software"}.indexOf(text);
    return i < 0 ? setFlowControl(UnknownFlowControl) : setFlowControl(static_cast<unsigned char>(i));
}
int TSerialPort::getFlowControl() const {
    return port->flowControl();
}

bool TSerialPort::setTimeOut(int ms) {
    timeOut = ms;
    return true;
}
void TSerialPort::setProtocolParam(unsigned short max) {
    maxData = max;
}

bool TSerialPort::setRTS(bool on) {
    return port->setRequestToSend(on);
}
bool TSerialPort::getRTS() const {
    return port->isRequestToSend();
}
bool TSerialPort::setDTR(bool on) {
    port->setDataTerminalReady(on);
    return true;
}
bool TSerialPort::getDTR() const {
    return port->isDataTerminalReady();
}

void TSerialPort::applySettings(const TProg& prog) {
    unsigned int baud = 0;
    int dataBits = 0, stopBits = 0, timeOut = 0;
    QString parity, flow;
    unsigned short maxData = 0;
    prog.getPortSettings(baud, dataBits, parity, stopBits, flow, timeOut);
    prog.getProtocolSettings(maxData);
    setBaudRate(baud);
    setDataBits((unsigned char)dataBits);
    setParity(parity);
    setStopBits((unsigned char)stopBits);
    setFlowControl(flow);
    setTimeOut(timeOut);
    setProtocolParam(maxData);
    setProtocol(prog.getProtocol());
}
