#pragma once

#include "SimChip.h"

#include <functional>
#include <memory>

// Chip models by family name (the description's gui_type). A model registers itself from its own source
// file with a static SimChipRegistrar, so adding a model touches no other file.
class SimChipRegistry {
public:
    using Creator = std::function<std::unique_ptr<SimChip>(const SimChipInfo&)>;

    static void add(const QString& family, Creator creator);
    static bool contains(const QString& family);
    static std::unique_ptr<SimChip> create(const QString& family, const SimChipInfo& info);
};

struct SimChipRegistrar {
    SimChipRegistrar(const QString& family, SimChipRegistry::Creator creator) {
        SimChipRegistry::add(family, std::move(creator));
    }
};
