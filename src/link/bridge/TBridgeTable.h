#pragma once

#include "link/bridge/IBridge.h"

#include <QStringList>
#include <memory>

// The protocols a programmer description may name in "/Main/Protocol" and the bridge of each;
// "native" needs none: the programmer speaks the frame protocol itself.
class TBridgeTable {
public:
    static const char* const native;
    static QStringList names();
    static bool contains(const QString& protocol);
    // Null for "native" and for a name the table does not hold.
    static std::unique_ptr<IBridge> create(const QString& protocol);
};
