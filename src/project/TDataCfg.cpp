#include "project/TDataCfg.h"

#include "project/CTagPrj.h"

#include <QMutexLocker>

#include <atomic>

namespace {
std::atomic<int> uinCounter{0};
}

TDataCfg::TDataCfg(const QString& n, const QString& d) : uin(uinCounter++), name(n), desc(d) {}

void TDataCfg::resetUINCounter() {
    uinCounter = 0;
}

void TDataCfg::setName(const QString& n) {
    QMutexLocker lock(&mutex);
    name = n;
}

QString TDataCfg::getName() const {
    QMutexLocker lock(&mutex);
    return name;
}

void TDataCfg::setDesc(const QString& d) {
    QMutexLocker lock(&mutex);
    desc = d;
}

QString TDataCfg::getDesc() const {
    QMutexLocker lock(&mutex);
    return desc;
}

void TDataCfg::setStatus(TCodeCfgStatus s) {
    QMutexLocker lock(&mutex);
    status = s;
}

TCodeCfgStatus TDataCfg::getStatus() const {
    QMutexLocker lock(&mutex);
    return status;
}

TData TDataCfg::getData() const {
    QMutexLocker lock(&mutex);
    return TData{{CTagCfg::name, name}};
}

void TDataCfg::setData(const TData& data) {
    QMutexLocker lock(&mutex);
    name = data.value(CTagCfg::name).toString();
}
