#pragma once

#include <QMutex>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>

// One loaded programmer description file. The port, protocol, pin-type, generator and reset defaults
// are read once and kept; everything else is read from the file when asked, so each caller gets its
// own settings object and none crosses threads.
class TProg : public QObject {
    Q_OBJECT
public:
    explicit TProg(const QString& fileName, QObject* parent = nullptr);

    QString getFileName() const { return fileName; }

    unsigned short getInterface() const;
    void getPortSettings(unsigned int& baud, int& dataBits, QString& parity, int& stopBits,
                         QString& flowControl, int& timeOut) const;
    void getProtocolSettings(unsigned short& maxData) const;
    // How frames reach the hardware: "/Main/Protocol", "native" when absent (read on demand).
    QString getProtocol() const;

    void getVccRange(double& min, double& max) const;
    double getVccDef() const;
    void getVppRange(double& min, double& max) const;
    double getVppDef() const;
    void getIccRange(double& min, double& max) const;
    double getIccDef() const;
    void getIppRange(double& min, double& max) const;
    double getIppDef() const;

    QString getPinsType() const;
    QStringList getPinsTypeView() const;
    // The number the I/O command sends for a pin-type letter; 0 means leave the pin as it is.
    int getPinsTypeCode(QChar c) const;

    void getFreqDef(int& fq, int& dt) const;
    void getFreq(bool& fqList, int& fqMin, int& fqMax, QVector<int>& fqValues, bool& dtShow, bool& dtList,
                 int& dtMin, int& dtMax, QVector<int>& dtValues) const;

    int getResetDef() const;
    void getReset(int& min, int& max) const;

    void getCLK(const QString& group, bool& isList, int& min, int& max, QVector<int>& values) const;
    int getCLKDef(const QString& group) const;
    // A clock parameter holds a frequency in range mode and a list key in list mode.
    int getCLKValue(const QString& group, unsigned int n) const;

    // Whether the programmer supports the command: "/Commands/<code>", default false.
    bool supportCmd(const QString& code) const;

    QStringList getPinsConnect(const QString& group, int mode) const;

private:
    void readPinTypes();
    void getRange(const QString& group, double& min, double& max) const;
    double getDef(const QString& group) const;
    QVector<int> getListValues(const QString& group, const QString& prefix) const;

    mutable QMutex mutex;
    QString fileName;
    unsigned short interfaceCode = 0;
    unsigned int baudRate = 115200;
    unsigned char dataBits = 8;
    QString parity;
    unsigned char stopBits = 1;
    QString flowControl;
    unsigned short timeOut = 1000;
    unsigned short maxData = 64;
    QString pinsType;
    QStringList pinsTypeView;
    int freqDef = 100000, dutyDef = 50;
    int resetDef = -400, resetMin = 10, resetMax = 1000;
};
