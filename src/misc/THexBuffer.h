#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QVector>

// The image of a chip's memory as the user edits it: bytes, the device address of the first one, and
// every edit on an undo stack. Edits overwrite; the image keeps its size until new data is set or
// loaded. Holds no widget, so the chip panel, its tests and the command line can share it.
class THexBuffer : public QObject {
    Q_OBJECT
public:
    // A run of differing bytes; beyond marks the run that only the longer of two images holds.
    struct Diff {
        qint64 offset;
        qint64 count;
        bool beyond = false;
        bool operator==(const Diff& o) const {
            return offset == o.offset && count == o.count && beyond == o.beyond;
        }
    };

    // The largest image loaded from a file.
    static const qint64 maxSize = qint64(64) << 20;

    explicit THexBuffer(QObject* parent = nullptr);

    // New contents: the undo history is dropped and the buffer counts as unmodified.
    void setData(const QByteArray& bytes, quint32 base = 0);
    const QByteArray& data() const { return bytes; }
    quint32 base() const { return start; }
    qint64 size() const { return bytes.size(); }

    // At most steps edits and bytes bytes (before and after of every edit) are kept for undo; the oldest
    // go first, but the last edit always stays undoable.
    void setUndoLimits(int steps, qint64 bytes);

    bool isModified() const;
    // false marks the current state as the saved one (after a save, a write to the chip).
    void setModified(bool modified);

    // Each edit is one undo step and is refused (false) when any of its bytes lies past the end. merge
    // joins a byte edit to the previous one when that one changed the same single byte, so the two
    // digits typed into one byte undo together.
    bool setByte(qint64 offset, char value, bool merge = false);
    // Repeats pattern over count bytes from offset.
    bool fill(qint64 offset, qint64 count, const QByteArray& pattern);
    // Overwrites from offset with as much of bytes as fits before the end; the number of bytes taken.
    qint64 paste(qint64 offset, const QByteArray& bytes);
    void undo();
    void redo();
    bool canUndo() const { return !undoStack.isEmpty(); }
    bool canRedo() const { return !redoStack.isEmpty(); }

    // The offset of needle at or after from (at or before it backwards), or -1.
    qint64 find(const QByteArray& needle, qint64 from, bool backwards = false) const;
    // Bytes typed as hex: pairs of digits, blanks and commas between them, "0x" before a group
    // ("DE AD be ef", "0xDEAD"). Empty with error set when the text is anything else.
    static QByteArray hexNeedle(const QString& text, QString* error = nullptr);
    // Text as the chip holds it: UTF-8, which is ASCII for ASCII text.
    static QByteArray textNeedle(const QString& text) { return text.toUtf8(); }

    QList<Diff> compare(const QByteArray& other) const;
    // One line per run at device addresses, the first shown runs, then how many more there are.
    QString diffText(const QList<Diff>& diffs, int shown = 20) const;

    // Why count bytes from offset are not all in the image ("The range 0x10, 4 bytes lies beyond ..."), or
    // empty when they are.
    QString rangeProblem(qint64 offset, qint64 count) const;

    // The check value of a catalogue model over count bytes from offset, most significant byte first;
    // empty with error set for an unknown model or a range past the end.
    QByteArray crcBytes(const QString& model, qint64 offset, qint64 count, QString* error = nullptr) const;
    // The same as a number (the low 64 bits for wider models); 0 when crcBytes fails.
    quint64 crc(const QString& model, qint64 offset, qint64 count) const;

    // formatKey "bin", "hex" or "ihex"; empty: guessed from the contents (load) or the name (save). A
    // BIN file starts at the base; a HEX file holds device addresses, its gaps load as erased bytes (FF).
    // Loading replaces the image and its history; saving writes aside and replaces the file only when
    // complete, and marks the buffer unmodified.
    bool load(const QString& file, const QString& formatKey, QString& error);
    bool save(const QString& file, const QString& formatKey, QString& error);
    // What the user should know before saving in that format (other tools misreading the HEX dialect's
    // records), or empty.
    QString saveWarning(const QString& file, const QString& formatKey) const;
    // The runs where a data file differs from the image, the file read as load() reads it.
    bool compareFile(const QString& file, const QString& formatKey, QList<Diff>& diffs, QString& error) const;
    // The image a data file holds from device address base on, at most limit bytes.
    static bool readImage(const QString& file, const QString& formatKey, quint32 base, qint64 limit,
                          QByteArray& image, QString& error);

signals:
    void changed(qint64 offset, qint64 count);
    void reset();
    void modifiedChanged(bool modified);
    void undoStateChanged();

private:
    struct Edit {
        qint64 offset;
        QByteArray before;
        QByteArray after;
    };
    bool apply(qint64 offset, const QByteArray& after, bool merge);
    void put(qint64 offset, const QByteArray& value);
    void afterStep(bool wasModified);
    void trimUndo();
    static bool formatKeyOf(const QString& file, const QString& given, bool forSave, QString& key,
                            QString& error);

    QByteArray bytes;
    quint32 start = 0;
    QVector<Edit> undoStack;
    QVector<Edit> redoStack;
    int undoSteps = 1000;
    qint64 undoBytes = qint64(256) << 20;
    // The undo depth at which the image equals the saved one; -1 when no depth does.
    int cleanDepth = 0;
};
