#include "ui/TPrjHistory.h"

#include "project/TCtrlProject.h"
#include "project/TDataPrj.h"

#include <QJsonDocument>

TPrjHistory::TPrjHistory(TDataPrj* p, int max) : prj(p), limit(max) {}

QByteArray TPrjHistory::current() const {
    return TCtrlProject::project_to_data(prj);
}

void TPrjHistory::reset(const QByteArray& savedData) {
    undoList.clear();
    redoList.clear();
    pending.clear();
    saved = savedData;
}

void TPrjHistory::markSaved() {
    saved = current();
}

bool TPrjHistory::restorable(const QByteArray& data) {
    QJsonParseError err{};
    return QJsonDocument::fromJson(data, &err).isObject() && err.error == QJsonParseError::NoError;
}

void TPrjHistory::push(QList<QByteArray>& list, const QByteArray& data) {
    list.append(data);
    while (list.size() > limit)
        list.removeFirst();
}

void TPrjHistory::begin() {
    pending = current();
}

void TPrjHistory::commit() {
    const QByteArray now = current();
    if (now != pending) {
        // A state that cannot be read back would end the undo there: older steps would skip it.
        if (restorable(pending))
            push(undoList, pending);
        else
            undoList.clear();
        redoList.clear();
    }
    pending.clear();
    syncChange(now);
}

void TPrjHistory::cancel() {
    pending.clear();
    syncChange(current());
}

bool TPrjHistory::undo() {
    if (undoList.isEmpty()) return false;
    const QByteArray now = current();
    if (restorable(now)) push(redoList, now);
    restore(undoList.takeLast());
    return true;
}

bool TPrjHistory::redo() {
    if (redoList.isEmpty()) return false;
    const QByteArray now = current();
    if (restorable(now)) push(undoList, now);
    restore(redoList.takeLast());
    return true;
}

void TPrjHistory::restore(const QByteArray& data) {
    const TData param = prj->getPrjParam();
    prj->clrPrj();
    TCtrlProject ctrl;
    ctrl.data_to_project(data, prj);
    prj->updCmdObjectAll();
    prj->updPrjParam(param);
    syncChange(data);
}

// Every edit marks the project changed, even one that changed nothing; what counts is whether the
// project still equals the file.
void TPrjHistory::syncChange(const QByteArray& data) {
    if (!saved.isNull() && data == saved)
        prj->resetChange();
    else if (!prj->isChange())
        prj->setChange();
}
