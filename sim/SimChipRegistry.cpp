#include "SimChipRegistry.h"

#include <QHash>

namespace {
// Built on first use: registrars in other files may run before any global of this file.
QHash<QString, SimChipRegistry::Creator>& creators() {
    static QHash<QString, SimChipRegistry::Creator> table;
    return table;
}
} // namespace

void SimChipRegistry::add(const QString& family, Creator creator) {
    creators().insert(family, std::move(creator));
}

bool SimChipRegistry::contains(const QString& family) {
    return creators().contains(family);
}

std::unique_ptr<SimChip> SimChipRegistry::create(const QString& family, const SimChipInfo& info) {
    const auto it = creators().constFind(family);
    return it == creators().constEnd() ? nullptr : (*it)(info);
}
