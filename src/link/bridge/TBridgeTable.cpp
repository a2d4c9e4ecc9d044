#include "link/bridge/TBridgeTable.h"

#include "link/bridge/TBridgeBusPirate.h"
#include "link/bridge/TBridgeSerprog.h"
#include "link/bridge/TBridgeStk500v1.h"

namespace {
template <class B> std::unique_ptr<IBridge> make() {
    return std::make_unique<B>();
}

// Each bridge by the protocol name it gives itself.
const struct {
    const char* name;
    std::unique_ptr<IBridge> (*make)();
} table[] = {
    {TBridgeSerprog::protocolName, make<TBridgeSerprog>},
    {TBridgeStk500v1::protocolName, make<TBridgeStk500v1>},
    {TBridgeBusPirate::protocolName, make<TBridgeBusPirate>},
};
} // namespace

const char* const TBridgeTable::native = "native";

QStringList TBridgeTable::names() {
    QStringList list{native};
    for (const auto& e : table)
        list << e.name;
    return list;
}

bool TBridgeTable::contains(const QString& protocol) {
    return names().contains(protocol);
}

std::unique_ptr<IBridge> TBridgeTable::create(const QString& protocol) {
    for (const auto& e : table)
        if (protocol == QLatin1String(e.name)) return e.make();
    return nullptr;
}
