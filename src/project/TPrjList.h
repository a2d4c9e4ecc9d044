#pragma once

#include <QList>
#include <QString>

// One entry of a project list tree: a folder or a project file, with its children.
struct TPrjListItem {
    QString name;
    QString file;
    bool expand = false;
    QList<TPrjListItem> children;

    bool operator==(const TPrjListItem& o) const {
        return name == o.name && file == o.file && expand == o.expand && children == o.children;
    }
};

// Project list files ("*.lst"): a tree written depth-first, each entry naming its parent by its 1-based
// number in the file.
class TPrjList {
public:
    static QByteArray toData(const QList<TPrjListItem>& tree);
    static bool save(const QString& fileName, const QList<TPrjListItem>& tree, QString* error = nullptr);
    // An unreadable or damaged file gives an empty tree; so does a parent number that names no earlier
    // entry (that entry is put at the top level instead, so nothing the user listed is lost).
    static QList<TPrjListItem> load(const QString& fileName);
    static QList<TPrjListItem> fromData(const QByteArray& data);
};

// One row of the list of project lists ("sp.lpl").
struct TSelectPrjListRow {
    QString name;
    QString file;
    bool operator==(const TSelectPrjListRow& o) const { return name == o.name && file == o.file; }
};

class TSelectPrjList {
public:
    static QByteArray toData(const QList<TSelectPrjListRow>& rows);
    static bool save(const QString& fileName, const QList<TSelectPrjListRow>& rows, QString* error = nullptr);
    static QList<TSelectPrjListRow> load(const QString& fileName);
    static QList<TSelectPrjListRow> fromData(const QByteArray& data);
};
