#include "project/TDataCfg.h"

#include "project/CTagPrj.h"


#include <atomic>

namespace {
std::atomic<int> uinCounter{0};
}

TDataCfg::TDataCfg(const QString& n, const QString& d) : uin(uinCounter++), name(n), desc(d) {}

void TDataCfg::resetUINCounter() {
    uinCounter = 0;
}

void TDataCfg::setName(const QString& n) {
    TLocker lock(mutex);
    name = n;
}

QString TDataCfg::getName() const {
    TLocker lock(mutex);
    return name;
}

void TDataCfg::setDesc(const QString& d) {
    TLocker lock(mutex);
    desc = d;
}

QString TDataCfg::getDesc() const {
    TLocker lock(mutex);
    return desc;
}

void TDataCfg::setStatus(TCodeCfgStatus s) {
    TLocker lock(mutex);
    status = s;
}

TCodeCfgStatus TDataCfg::getStatus() const {
    TLocker lock(mutex);
    return status;
}

TData TDataCfg::getData() const {
    TLocker lock(mutex);
    return TData{{CTagCfg::name, name}};
}

void TDataCfg::setData(const TData& data) {
    TLocker lock(mutex);
    name = data.value(CTagCfg::name).toString();
}
