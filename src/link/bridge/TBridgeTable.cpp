#include "link/bridge/TBridgeTable.h"

#include "link/bridge/TBridgeBusPirate.h"
#include "link/bridge/TBridgeSerprog.h"
#include "link/bridge/TBridgeStk500v1.h"

#include <functional>

namespace {
struct Entry {
    const char* name;
    std::function<std::unique_ptr<IBridge>()> make;
};

const Entry table[] = {
    {"serprog", [] { return std::make_unique<TBridgeSerprog>(); }},
    {"stk500v1", [] { return std::make_unique<TBridgeStk500v1>(); }},
    {"buspirate", [] { return std::make_unique<TBridgeBusPirate>(); }},
};
} // namespace

const char* const TBridgeTable::native = "native";

QStringList TBridgeTable::names() {
    QStringList list{native};
    for (const Entry& e : table)
        list << e.name;
    return list;
}

bool TBridgeTable::contains(const QString& protocol) {
    return names().contains(protocol);
}

std::unique_ptr<IBridge> TBridgeTable::create(const QString& protocol) {
    for (const Entry& e : table)
        if (protocol == e.name) return e.make();
    return nullptr;
}
