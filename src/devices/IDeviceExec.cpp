#include "devices/IDeviceExec.h"

IDeviceExec::IDeviceExec(const TData& p, QObject* parent) : QObject(parent), param(p) {}

IDeviceExec::~IDeviceExec() = default;

bool IDeviceExec::execReadSignature(TSerialPort&, QString&) { return false; }
