#include "misc/THexBuffer.h"

#include "app/TLang.h"
#include "formats/ICRC.h"
#include "formats/TCRC.h"
#include "formats/TFormat.h"
#include "formats/TFormatGuess.h"
#include "formats/TSaveAside.h"
#include "misc/TNumberText.h"
#include "misc/dev_misc.h"

#include <QLocale>
#include <QRegularExpression>
#include <memory>

namespace {
constexpr int LangRunDiffers = 1800, LangByteDiffers = 1801, LangRunBeyond = 1802, LangMoreRuns = 1803;
constexpr int LangNoDiffs = 1804, LangNotHex = 1805, LangUnknownFormat = 1806, LangTooLarge = 1807;
constexpr int LangUnknownCRC = 1808, LangRangeBeyond = 1809;
// The line that names the file under a format's own message, as the file commands show it.
constexpr int LangFileLine = 1734;
// Files are read and written in pieces of this size.
constexpr qint64 filePiece = 64 * 1024;

QString hex6(qint64 v) {
    return QStringLiteral("0x") + QStringLiteral("%1").arg(v, 6, 16, QLatin1Char('0')).toUpper();
}

QString thousands(qint64 v) {
    return QLocale(QLocale::English).toString(v);
}

bool fileFailed(const QString& why, const QString& file, QString& error) {
    error = why + QLatin1Char('\n') + Lang.get(LangFileLine).arg(file);
    return false;
}
} // namespace

THexBuffer::THexBuffer(QObject* parent) : QObject(parent) {}

void THexBuffer::setData(const QByteArray& data, quint32 base) {
    const bool wasModified = isModified();
    bytes = data;
    start = base;
    undoStack.clear();
    redoStack.clear();
    cleanDepth = 0;
    emit reset();
    emit undoStateChanged();
    if (wasModified) emit modifiedChanged(false);
}

bool THexBuffer::isModified() const {
    return cleanDepth != undoStack.size();
}

void THexBuffer::setModified(bool modified) {
    const bool was = isModified();
    cleanDepth = modified ? -1 : undoStack.size();
    if (was != modified) emit modifiedChanged(modified);
}

bool THexBuffer::setByte(qint64 offset, char value, bool merge) {
    return apply(offset, QByteArray(1, value), merge);
}

bool THexBuffer::fill(qint64 offset, qint64 count, const QByteArray& pattern) {
    if (pattern.isEmpty() || !TMiscDev::isRangeInside(offset, count, 0, size())) return false;
    if (count == 0) return true;
    return apply(
        offset, pattern.repeated(int((count + pattern.size() - 1) / pattern.size())).left(int(count)), false);
}

qint64 THexBuffer::paste(qint64 offset, const QByteArray& data) {
    if (offset < 0 || offset >= size()) return 0;
    const QByteArray taken = data.left(int(qMin<qint64>(data.size(), size() - offset)));
    return !taken.isEmpty() && apply(offset, taken, false) ? taken.size() : 0;
}

bool THexBuffer::apply(qint64 offset, const QByteArray& after, bool merge) {
    if (!TMiscDev::isRangeInside(offset, after.size(), 0, size())) return false;
    const QByteArray before = bytes.mid(int(offset), after.size());
    if (before == after) return true;
    const bool wasModified = isModified();
    const bool joins = merge && after.size() == 1 && redoStack.isEmpty() && !undoStack.isEmpty() &&
                       undoStack.last().offset == offset && undoStack.last().after.size() == 1 &&
                       cleanDepth != undoStack.size();
    if (joins) {
        undoStack.last().after = after;
    } else {
        if (cleanDepth > undoStack.size()) cleanDepth = -1; // the saved state was undone and is gone now
        redoStack.clear();
        undoStack.append({offset, before, after});
        trimUndo();
    }
    put(offset, after);
    afterStep(wasModified);
    return true;
}

void THexBuffer::setUndoLimits(int steps, qint64 bytes) {
    undoSteps = qMax(1, steps);
    undoBytes = bytes;
    trimUndo();
}

// A fill of a whole 16 MiB image keeps 32 MiB for its undo: the history is bounded in bytes, not only in
// steps.
void THexBuffer::trimUndo() {
    qint64 held = 0;
    for (const QVector<Edit>* stack : {&undoStack, &redoStack})
        for (const Edit& e : *stack)
            held += e.before.size() + e.after.size();
    while (undoStack.size() > 1 && (undoStack.size() > undoSteps || held > undoBytes)) {
        held -= undoStack.first().before.size() + undoStack.first().after.size();
        undoStack.removeFirst();
        cleanDepth = cleanDepth > 0 ? cleanDepth - 1 : -1;
    }
}

void THexBuffer::put(qint64 offset, const QByteArray& value) {
    bytes.replace(int(offset), value.size(), value);
    emit changed(offset, value.size());
}

void THexBuffer::afterStep(bool wasModified) {
    emit undoStateChanged();
    if (wasModified != isModified()) emit modifiedChanged(isModified());
}

void THexBuffer::undo() {
    if (undoStack.isEmpty()) return;
    const bool wasModified = isModified();
    const Edit edit = undoStack.takeLast();
    redoStack.append(edit);
    put(edit.offset, edit.before);
    afterStep(wasModified);
}

void THexBuffer::redo() {
    if (redoStack.isEmpty()) return;
    const bool wasModified = isModified();
    const Edit edit = redoStack.takeLast();
    undoStack.append(edit);
    put(edit.offset, edit.after);
    afterStep(wasModified);
}

qint64 THexBuffer::find(const QByteArray& needle, qint64 from, bool backwards) const {
    if (needle.isEmpty() || from < 0) return -1;
    if (backwards) return bytes.lastIndexOf(needle, int(qMin<qint64>(from, size())));
    return from >= size() ? -1 : bytes.indexOf(needle, int(from));
}

QByteArray THexBuffer::hexNeedle(const QString& text, QString* error) {
    static const QRegularExpression group(QStringLiteral("^(0[xX])?((?:[0-9A-Fa-f]{2})+)$"));
    QByteArray out;
    const QStringList groups = text.split(QRegularExpression(QStringLiteral("[\\s,]+")), Qt::SkipEmptyParts);
    for (const QString& g : groups) {
        const QRegularExpressionMatch m = group.match(g);
        if (!m.hasMatch()) {
            if (error) *error = Lang.get(LangNotHex).arg(text.trimmed());
            return QByteArray();
        }
        out += QByteArray::fromHex(m.captured(2).toLatin1());
    }
    if (out.isEmpty() && error) *error = Lang.get(LangNotHex).arg(text.trimmed());
    return out;
}

QList<THexBuffer::Diff> THexBuffer::compare(const QByteArray& other) const {
    QList<Diff> runs;
    const qint64 common = qMin(size(), qint64(other.size()));
    const char* a = bytes.constData();
    const char* b = other.constData();
    for (qint64 i = 0; i < common; ++i) {
        if (a[i] == b[i]) continue;
        if (!runs.isEmpty() && runs.last().offset + runs.last().count == i)
            ++runs.last().count;
        else
            runs.append({i, 1});
    }
    if (size() != other.size()) runs.append({common, qAbs(size() - other.size()), true});
    return runs;
}

QString THexBuffer::diffText(const QList<Diff>& diffs, int shown) const {
    if (diffs.isEmpty()) return Lang.get(LangNoDiffs);
    QStringList lines;
    for (int i = 0; i < diffs.size() && i < shown; ++i) {
        const Diff& d = diffs.at(i);
        const qint64 first = start + d.offset, last = first + d.count - 1;
        if (d.beyond)
            lines << Lang.get(LangRunBeyond).arg(hex6(first), hex6(last), thousands(d.count));
        else if (d.count == 1)
            lines << Lang.get(LangByteDiffers).arg(hex6(first));
        else
            lines << Lang.get(LangRunDiffers).arg(hex6(first), hex6(last), thousands(d.count));
    }
    if (diffs.size() > shown) lines << Lang.get(LangMoreRuns).arg(thousands(diffs.size() - shown));
    return lines.join(QLatin1Char('\n'));
}

QString THexBuffer::rangeProblem(qint64 offset, qint64 count) const {
    if (TMiscDev::isRangeInside(offset, count, 0, size())) return QString();
    return Lang.get(LangRangeBeyond).arg(TNumberText::show(start + offset), thousands(count));
}

QByteArray THexBuffer::crcBytes(const QString& model, qint64 offset, qint64 count, QString* error) const {
    std::unique_ptr<ICRC> crc(TCRC::createCRCObject(model));
    QString why;
    if (!crc)
        why = Lang.get(LangUnknownCRC).arg(model);
    else
        why = rangeProblem(offset, count);
    if (!why.isEmpty()) {
        if (error) *error = why;
        return QByteArray();
    }
    crc->calc(bytes.constData() + offset, count);
    return crc->getResult();
}

quint64 THexBuffer::crc(const QString& model, qint64 offset, qint64 count) const {
    const QByteArray result = crcBytes(model, offset, count);
    quint64 value = 0;
    for (char c : result)
        value = (value << 8) | uchar(c);
    return value;
}

bool THexBuffer::formatKeyOf(const QString& file, const QString& given, bool forSave, QString& key,
                             QString& error) {
    key = given.trimmed().toLower();
    if (key.isEmpty()) key = forSave ? TFormatGuess::keyOfName(file) : TFormatGuess::keyOf(file);
    if (key == QLatin1String("bin") || key == QLatin1String("hex") || key == QLatin1String("ihex"))
        return true;
    error = Lang.get(LangUnknownFormat).arg(given);
    return false;
}

bool THexBuffer::readImage(const QString& file, const QString& formatKey, quint32 base, qint64 limit,
                           QByteArray& image, QString& error) {
    QString key;
    if (!formatKeyOf(file, formatKey, false, key, error)) return false;
    // A BIN file starts at the base; a HEX file names device addresses. One byte past the limit tells a
    // file that holds more from one that just fills it.
    const qint64 fileStart = key == QLatin1String("bin") ? 0 : base;
    TFormat format(key, file, fileStart, base, base + limit, filePiece);
    if (!format.open(FormatModeRead)) return error = format.getErrorText(), false;
    image.clear();
    long long addr = base;
    for (;;) {
        QByteArray piece;
        if (!format.read(addr, piece)) return error = format.getErrorText(), false;
        if (piece.isEmpty()) break;
        const qint64 at = addr - base;
        if (at + piece.size() > limit) {
            error = Lang.get(LangTooLarge).arg(file, thousands(limit));
            return false;
        }
        if (at + piece.size() > image.size()) image.append(int(at + piece.size() - image.size()), char(0xFF));
        image.replace(int(at), piece.size(), piece);
        addr += piece.size();
    }
    format.close();
    return true;
}

bool THexBuffer::compareFile(const QString& file, const QString& formatKey, QList<Diff>& diffs,
                             QString& error) const {
    QByteArray image;
    QString why;
    if (!readImage(file, formatKey, start, maxSize, image, why)) return fileFailed(why, file, error);
    diffs = compare(image);
    return true;
}

QString THexBuffer::saveWarning(const QString& file, const QString& formatKey) const {
    QString key, error;
    if (!formatKeyOf(file, formatKey, true, key, error)) return QString();
    return TFormat::getWarning(key, qint64(start) + qMax<qint64>(size(), 1) - 1);
}

bool THexBuffer::load(const QString& file, const QString& formatKey, QString& error) {
    QByteArray image;
    QString why;
    if (!readImage(file, formatKey, start, maxSize, image, why)) return fileFailed(why, file, error);
    setData(image, start);
    return true;
}

bool THexBuffer::save(const QString& file, const QString& formatKey, QString& error) {
    QString key;
    if (!formatKeyOf(file, formatKey, true, key, error)) return false;
    TSaveAside aside(file);
    if (!aside.begin(false)) return error = aside.getErrorText(), false;
    const qint64 fileStart = key == QLatin1String("bin") ? 0 : start;
    TFormat format(key, aside.path(), fileStart, start, start + qMax<qint64>(size(), 1) - 1, filePiece);
    bool ok = format.open(FormatModeWrite);
    for (qint64 at = 0; ok && at < size(); at += filePiece)
        ok = format.write(fileStart + at, bytes.mid(int(at), int(filePiece)));
    ok = format.close() && ok;
    if (!ok) return fileFailed(format.getErrorText(), file, error);
    if (!aside.commit()) return error = aside.getErrorText(), false;
    setModified(false);
    return true;
}
