#pragma once

#include <QString>

// A file written aside and put in place only when complete: the data goes to a new file beside the
// target, which replaces the target in one rename once everything is in it. Until then, and whenever
// the writing fails or is abandoned, the target stays exactly as it was.
class TSaveAside {
public:
    explicit TSaveAside(const QString& target);
    ~TSaveAside(); // an uncommitted file aside is removed

    // Creates the file aside, a copy of the target when keep is set and the target exists.
    bool begin(bool keep);
    // The file to write.
    QString path() const { return aside; }
    // Flushes the file aside to the disk and puts it in the target's place.
    bool commit();
    void discard();

    bool targetExisted() const { return existed; }
    QString getErrorText() const { return errorText; }

private:
    bool fail(const QString& text);

    QString target;
    QString aside;
    QString errorText;
    bool existed = false;
};
