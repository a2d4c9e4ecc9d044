#include "SimStreamProtocol.h"

#include "SimBusPirate.h"
#include "SimSerprog.h"
#include "SimStk500v1.h"

std::unique_ptr<SimStreamProtocol> SimStreamProtocol::create(const QString& name, SimProgrammer& programmer) {
    if (name == "serprog") return std::make_unique<SimSerprog>(programmer.socket());
    if (name == "stk500v1") return std::make_unique<SimStk500v1>(programmer.socket());
    if (name == "buspirate") return std::make_unique<SimBusPirate>(programmer.socket());
    return nullptr;
}

bool SimStreamProtocol::known(const QString& name) {
    return name == "serprog" || name == "stk500v1" || name == "buspirate";
}
