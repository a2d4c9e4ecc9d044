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
    // Deeper trees are taken for damage: no list a person keeps comes near it, and the tree widget and
    // the writer walk the tree recursively.
    static const int maxDepth = 64;

    static QByteArray toData(const QList<TPrjListItem>& tree);
    // Refuses (with the reason in error) a tree that checkTree() finds fault with; the file stays as it was.
    static bool save(const QString& fileName, const QList<TPrjListItem>& tree, QString* error = nullptr);
    // An unreadable or damaged file gives an empty tree, a file nested deeper than maxDepth too (with the
    // reason in error); a parent number that names no earlier entry puts that entry at the top level
    // instead, so nothing the user listed is lost.
    static QList<TPrjListItem> load(const QString& fileName);
    static QList<TPrjListItem> fromData(const QByteArray& data, QString* error = nullptr);
    // Why the writer cannot write the tree as it is (a name or file it would not read back, or too deep a
    // nesting); empty when it can.
    static QString checkTree(const QList<TPrjListItem>& tree, int depth = 1);
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
