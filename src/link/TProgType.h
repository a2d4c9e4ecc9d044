#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

// The known programmer types, in the user's order, each with its description file.
class TProgType {
public:
    int count() const { return names.size(); }
    bool contains(const QString& name) const { return files.contains(name); }
    QString getTypeFromIndex(int i) const { return names.value(i); }
    QString getFile(const QString& name) const { return files.value(name); }
    QString getFileFromIndex(int i) const { return files.value(names.value(i)); }
    void append(const QString& name, const QString& file);
    void clear();

private:
    QStringList names;
    QHash<QString, QString> files;
};
