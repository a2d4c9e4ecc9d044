#include "link/bridge/TBridgeTable.h"

#include "link/bridge/TBridgeBusPirate.h"
#include "link/bridge/TBridgeSerprog.h"
#include "link/bridge/TBridgeStk500v1.h"

namespace {
// Each bridge names its own protocol; making one does nothing on any port.
using Make = std::unique_ptr<IBridge> (*)();
template <class B> std::unique_ptr<IBridge> make() {
    return std::make_unique<B>();
}
const Make table[] = {make<TBridgeSerprog>, make<TBridgeStk500v1>, make<TBridgeBusPirate>};
} // namespace

const char* const TBridgeTable::native = "native";

QStringList TBridgeTable::names() {
    QStringList list{native};
    for (Make m : table)
        list << m()->protocol();
    return list;
}

bool TBridgeTable::contains(const QString& protocol) {
    return names().contains(protocol);
}

std::unique_ptr<IBridge> TBridgeTable::create(const QString& protocol) {
    for (Make m : table) {
        std::unique_ptr<IBridge> bridge = m();
        if (bridge->protocol() == protocol) return bridge;
    }
    return nullptr;
}
