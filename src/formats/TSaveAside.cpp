#include "formats/TSaveAside.h"

#include "app/TLang.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {
// Language texts: the file aside cannot be made, copied or put in place.
constexpr int LangAsideCreate = 1211, LangAsideCommit = 1212;
constexpr qint64 copyBlock = 1 << 20;

// A hidden name beside the target that no other run picks at the same time.
QString asideName(const QString& target) {
    const QFileInfo info(target);
    return info.absolutePath() + QStringLiteral("/.%1.%2.part")
                                     .arg(info.fileName())
                                     .arg(QRandomGenerator::global()->generate(), 8, 16, QLatin1Char('0'));
}

bool copyInto(QFile& from, QFile& to) {
    QByteArray block;
    while (!from.atEnd()) {
        block = from.read(copyBlock);
        if (block.isEmpty() && from.error() != QFileDevice::NoError) return false;
        if (to.write(block) != block.size()) return false;
    }
    return true;
}

bool syncFile(const QString& name) {
    const int fd = ::open(QFile::encodeName(name).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return false;
    const bool ok = ::fsync(fd) == 0;
    ::close(fd);
    return ok;
}
} // namespace

TSaveAside::TSaveAside(const QString& file) : target(file) {}

TSaveAside::~TSaveAside() {
    discard();
}

bool TSaveAside::begin(bool keep) {
    existed = QFileInfo::exists(target);
    aside = asideName(target);
    QFile out(aside);
    if (!out.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return fail(Lang.get(LangAsideCreate).arg(aside, out.errorString()));
    if (existed) out.setPermissions(QFile::permissions(target));
    if (!keep || !existed) return true;
    QFile in(target);
    if (in.open(QIODevice::ReadOnly) && copyInto(in, out) && out.flush()) return true;
    const QString why = in.isOpen() ? out.errorString() : in.errorString();
    out.close();
    discard();
    return fail(Lang.get(LangAsideCreate).arg(aside, why));
}

bool TSaveAside::commit() {
    if (aside.isEmpty()) return false;
    if (!syncFile(aside) ||
        std::rename(QFile::encodeName(aside).constData(), QFile::encodeName(target).constData()) != 0) {
        const QString why = QString::fromLocal8Bit(std::strerror(errno));
        discard();
        return fail(Lang.get(LangAsideCommit).arg(target, why));
    }
    aside.clear();
    return true;
}

void TSaveAside::discard() {
    if (aside.isEmpty()) return;
    QFile::remove(aside);
    aside.clear();
}

bool TSaveAside::fail(const QString& text) {
    errorText = text;
    return false;
}
