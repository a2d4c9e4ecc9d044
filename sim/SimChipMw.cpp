#include "SimChipMw.h"

#include "SimChipRegistry.h"

namespace {
SimChipRegistrar registrar("Dev93",
                           [](const SimChipInfo& info) { return std::make_unique<SimChipMw>(info); });
} // namespace

SimChipMw::SimChipMw(const SimChipInfo& info)
    : SimChip(info), memory(int(info.params.value("size").toLongLong()), char(0xFF)) {}

SimReply SimChipMw::request(unsigned char cmd, const QByteArray& data) {
    if (cmd != 3) return SimReply::fail(ErrUnknownCommand);
    if (!data.isEmpty()) return SimReply::fail(ErrLength);
    memory.fill(char(0xFF));
    return SimReply::ok();
}
