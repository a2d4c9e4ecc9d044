#include "link/TProgName.h"

// A name given twice keeps its first place and takes the later settings.
void TProgName::append(bool flag, const QString& name, const QString& port, const QString& type) {
    if (!data.contains(name)) names << name;
    data.insert(name, TProgInfo{flag, port, type});
}

void TProgName::clear() {
    names.clear();
    data.clear();
}
