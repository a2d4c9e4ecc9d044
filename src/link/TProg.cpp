#include "link/TProg.h"

#include "app/TSettings.h"
#include "link/bridge/TBridgeTable.h"

#include <algorithm>

namespace {
const char pinLetters[] = "IlhLHoOZ";
const char* const pinTexts[] = {
    "I (input)",         "l (input - pull-down)",       "h (input - pull-up)",          "L (output - low)",
    "H (output - high)", "o (output open drain - low)", "O (output open drain - high)", "Z (tri-stated)"};
} // namespace

TProg::TProg(const QString& file, QObject* parent) : QObject(parent), fileName(file) {
    TSettings s(fileName);
    interfaceCode = static_cast<unsigned short>(s.value("/Main/Interface", 0).toInt());
    baudRate = static_cast<unsigned int>(s.value("/Port/BaudRate", 115200).toInt());
    dataBits = static_cast<unsigned char>(s.value("/Port/DataBits", 8).toInt());
    parity = s.value("/Port/Parity", QString()).toString();
    stopBits = static_cast<unsigned char>(s.value("/Port/StopBits", 1).toInt());
    flowControl = s.value("/Port/FlowControl", QString()).toString();
    timeOut = static_cast<unsigned short>(s.value("/Port/TimeOut", 1000).toInt());
    maxData = static_cast<unsigned short>(s.value("/Protocol/MAX_DATA", 64).toInt());
    readPinTypes();
    freqDef = s.value("/Generator/FQ_DEF", 100000).toInt();
    dutyDef = s.value("/Generator/DT_DEF", 50).toInt();
    resetMin = s.value("/Reset/MIN", 10).toInt();
    resetMax = s.value("/Reset/MAX", 1000).toInt();
    resetDef = s.value("/Reset/DEF", -400).toInt();
}

// Index 0 of both lists means "leave the pin as it is", so list index and code character always agree.
void TProg::readPinTypes() {
    TSettings s(fileName);
    pinsType = "-";
    pinsTypeView = QStringList{"- (not change)"};
    for (int i = 0; i < 8; ++i) {
        if (!s.value(QStringLiteral("/PinType/%1").arg(QChar(pinLetters[i])), false).toBool()) continue;
        pinsType += QChar(pinLetters[i]);
        pinsTypeView << pinTexts[i];
    }
}

unsigned short TProg::getInterface() const {
    QMutexLocker lock(&mutex);
    return interfaceCode;
}

void TProg::getPortSettings(unsigned int& baud, int& data, QString& par, int& stop, QString& flow,
                            int& time) const {
    QMutexLocker lock(&mutex);
    baud = baudRate;
    data = dataBits;
    par = parity;
    stop = stopBits;
    flow = flowControl;
    time = timeOut;
}

QString TProg::getProtocol() const {
    return TSettings(fileName).value("/Main/Protocol", TBridgeTable::native).toString();
}

void TProg::getProtocolSettings(unsigned short& max) const {
    QMutexLocker lock(&mutex);
    max = maxData;
}

void TProg::getRange(const QString& group, double& min, double& max) const {
    TSettings s(fileName);
    min = s.value(QStringLiteral("/%1/MIN").arg(group), 0.0).toDouble();
    max = s.value(QStringLiteral("/%1/MAX").arg(group), 0.0).toDouble();
}

double TProg::getDef(const QString& group) const {
    TSettings s(fileName);
    return s.value(QStringLiteral("/%1/DEF").arg(group), 0.0).toDouble();
}

void TProg::getVccRange(double& min, double& max) const {
    getRange("Vcc", min, max);
}
double TProg::getVccDef() const {
    return getDef("Vcc");
}
void TProg::getVppRange(double& min, double& max) const {
    getRange("Vpp", min, max);
}
double TProg::getVppDef() const {
    return getDef("Vpp");
}
void TProg::getIccRange(double& min, double& max) const {
    getRange("Icc", min, max);
}
double TProg::getIccDef() const {
    return getDef("Icc");
}
void TProg::getIppRange(double& min, double& max) const {
    getRange("Ipp", min, max);
}
double TProg::getIppDef() const {
    return getDef("Ipp");
}

QString TProg::getPinsType() const {
    QMutexLocker lock(&mutex);
    return pinsType;
}

QStringList TProg::getPinsTypeView() const {
    QMutexLocker lock(&mutex);
    return pinsTypeView;
}

int TProg::getPinsTypeCode(QChar c) const {
    return QString(pinLetters).indexOf(c) + 1;
}

void TProg::getFreqDef(int& fq, int& dt) const {
    QMutexLocker lock(&mutex);
    fq = freqDef;
    dt = dutyDef;
}

// Every key of the group whose name starts exactly with the prefix adds the number after it; a number
// that does not parse counts as 0, as the settings' own conversion gives it.
QVector<int> TProg::getListValues(const QString& group, const QString& prefix) const {
    TSettings s(fileName);
    s.beginGroup(group);
    QVector<int> values;
    for (const QString& key : s.childKeys())
        if (key.startsWith(prefix, Qt::CaseSensitive)) values << key.mid(prefix.size()).toInt();
    std::sort(values.begin(), values.end());
    return values;
}

void TProg::getFreq(bool& fqList, int& fqMin, int& fqMax, QVector<int>& fqValues, bool& dtShow, bool& dtList,
                    int& dtMin, int& dtMax, QVector<int>& dtValues) const {
    TSettings s(fileName);
    fqMin = s.value("/Generator/FQ_MIN", 0).toInt();
    fqMax = s.value("/Generator/FQ_MAX", 0).toInt();
    fqList = s.value("/Generator/FQ_LIST", false).toBool();
    dtShow = s.value("/Generator/DT_SHOW", false).toBool();
    dtMin = s.value("/Generator/DT_MIN", 0).toInt();
    dtMax = s.value("/Generator/DT_MAX", 0).toInt();
    dtList = s.value("/Generator/DT_LIST", false).toBool();
    fqValues = getListValues("Generator", "FQLV_");
    dtValues = getListValues("Generator", "DTLV_");
}

int TProg::getResetDef() const {
    QMutexLocker lock(&mutex);
    return resetDef;
}

void TProg::getReset(int& min, int& max) const {
    QMutexLocker lock(&mutex);
    min = resetMin;
    max = resetMax;
}

void TProg::getCLK(const QString& group, bool& isList, int& min, int& max, QVector<int>& values) const {
    TSettings s(fileName);
    min = s.value(QStringLiteral("/%1/CLK_MIN").arg(group), 0).toInt();
    max = s.value(QStringLiteral("/%1/CLK_MAX").arg(group), 0).toInt();
    isList = s.value(QStringLiteral("/%1/CLK_LIST").arg(group), false).toBool();
    values = getListValues(group, "CLKLV_");
}

int TProg::getCLKDef(const QString& group) const {
    TSettings s(fileName);
    return s.value(QStringLiteral("/%1/CLK_DEF").arg(group), 0).toInt();
}

int TProg::getCLKValue(const QString& group, unsigned int n) const {
    TSettings s(fileName);
    if (!s.value(QStringLiteral("/%1/CLK_LIST").arg(group), false).toBool()) return static_cast<int>(n);
    return s.value(QStringLiteral("/%1/CLKLV_%2").arg(group).arg(n), n).toInt();
}

bool TProg::supportCmd(const QString& code) const {
    TSettings s(fileName);
    return s.value(QStringLiteral("/Commands/%1").arg(code), false).toBool();
}

// An entry is "switch, pin number" under the pin's name; the label comes from the target group.
QStringList TProg::getPinsConnect(const QString& group, int mode) const {
    TSettings s(fileName);
    s.beginGroup("Pins");
    const QStringList keys = s.childKeys();
    QVector<QStringList> entries;
    for (const QString& key : keys)
        entries << (QStringList{key} + s.value(key).toStringList());
    s.endGroup();
    QStringList result;
    for (const QStringList& e : entries) {
        if (e.size() != 3) continue;
        if (mode != 0 && e.at(1).trimmed() != "1") continue;
        const QString label = s.value(QStringLiteral("/%1/PIN_%2").arg(group, e.at(2).trimmed())).toString();
        if (label.isEmpty())
            result << e.at(0);
        else
            result << (mode != 0 ? QStringLiteral("%2 - %1") : QStringLiteral("%1 - %2")).arg(e.at(0), label);
    }
    return result;
}
