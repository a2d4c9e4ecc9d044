#include "SimStreamProtocol.h"

#include "SimSerprog.h"

std::unique_ptr<SimStreamProtocol> SimStreamProtocol::create(const QString& name, SimProgrammer& programmer) {
    if (name == "serprog") return std::make_unique<SimSerprog>(programmer.socket());
    return nullptr;
}

bool SimStreamProtocol::known(const QString& name) {
    return name == "serprog";
}
