#pragma once

#include "link/TProgInfo.h"

#include <QHash>
#include <QString>
#include <QStringList>

// The programmers the user has set up, in the user's order, each bound to a type and a serial port.
class TProgName {
public:
    int count() const { return names.size(); }
    bool contains(const QString& name) const { return data.contains(name); }
    QString getNameFromIndex(int i) const { return names.value(i); }
    QStringList getNameList() const { return names; }
    TProgInfo getData(const QString& name) const { return data.value(name); }
    TProgInfo getDataFromIndex(int i) const { return data.value(names.value(i)); }
    void append(bool flag, const QString& name, const QString& port, const QString& type);
    void clear();

private:
    QStringList names;
    QHash<QString, TProgInfo> data;
};
