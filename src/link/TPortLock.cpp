#include "link/TPortLock.h"

#include <QFileInfo>
#include <QHash>

#include <mutex>

namespace {
struct Claim {
    const void* holder;
    QString name;
};

std::mutex lockMutex;
QHash<QString, Claim>& claims() {
    static QHash<QString, Claim> table;
    return table;
}

QString canonical(const QString& port) {
    const QString path = QFileInfo(port).canonicalFilePath();
    return path.isEmpty() ? port : path;
}
} // namespace

bool TPortLock::claim(const QString& port, const void* holder, const QString& name, QString* heldBy) {
    const QString key = canonical(port);
    std::lock_guard<std::mutex> lock(lockMutex);
    auto it = claims().find(key);
    if (it != claims().end() && it->holder != holder) {
        if (heldBy) *heldBy = it->name;
        return false;
    }
    for (auto other = claims().begin(); other != claims().end();) {
        // One holder, one port: a holder that moves on lets go of the previous one.
        if (other->holder == holder && other.key() != key)
            other = claims().erase(other);
        else
            ++other;
    }
    claims().insert(key, Claim{holder, name});
    return true;
}

void TPortLock::release(const void* holder) {
    std::lock_guard<std::mutex> lock(lockMutex);
    for (auto it = claims().begin(); it != claims().end();) {
        if (it->holder == holder)
            it = claims().erase(it);
        else
            ++it;
    }
}
