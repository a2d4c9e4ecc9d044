#pragma once

#include <QByteArray>
#include <QList>

class TDataPrj;

// Undo and redo of a project's edits as snapshots of its saved bytes: the file form is the one complete
// description of a project that needs no knowledge of the edit that changed it. Restoring rebuilds the
// project from a snapshot, keeps its file name and marks it changed unless it equals the saved file.
class TPrjHistory {
public:
    explicit TPrjHistory(TDataPrj* prj, int limit = 100);

    // Another project, or the same one closed: nothing to undo; `saved` is the file as on disk.
    void reset(const QByteArray& saved = QByteArray());
    // The project has just been written.
    void markSaved();

    // An edit goes between begin() and commit(); an edit that changed no byte leaves no step.
    void begin();
    void commit();
    // The edit begun was taken back by its caller: no step, the change flag as before it.
    void cancel();

    bool canUndo() const { return !undoList.isEmpty(); }
    bool canRedo() const { return !redoList.isEmpty(); }
    bool undo();
    bool redo();

    // Whether the bytes can be read back: a value holding a quote makes a file the reader rejects.
    static bool restorable(const QByteArray& data);

private:
    QByteArray current() const;
    void restore(const QByteArray& data);
    void syncChange(const QByteArray& data);
    void push(QList<QByteArray>& list, const QByteArray& data);

    TDataPrj* prj;
    const int limit;
    QList<QByteArray> undoList, redoList;
    QByteArray saved, pending;
};
