#include "link/TProgType.h"

// A name given twice keeps its first place and takes the later file.
void TProgType::append(const QString& name, const QString& file) {
    if (!files.contains(name)) names << name;
    files.insert(name, file);
}

void TProgType::clear() {
    names.clear();
    files.clear();
}
