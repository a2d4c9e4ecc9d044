#include "project/TPrjList.h"

#include "app/TFileSave.h"
#include "app/TLang.h"
#include "project/TPrjText.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>
#include <QVector>

namespace {

const char* const header = "{\n    \"version\": 1,\n    \"list\":\n    [\n";
const char* const footer = "    ]\n}\n";

void writeItems(QTextStream& out, const QList<TPrjListItem>& items, int parent, int& counter) {
    for (const TPrjListItem& item : items) {
        const int number = ++counter;
        out << QStringLiteral(
                   "        {\"parent\": %2, \"expand\": %3, \"name\": \"%4\", \"file\": \"%5\"},\n")
                   .arg(parent)
                   .arg(item.expand ? 1 : 0)
                   .arg(item.name, item.file);
        writeItems(out, item.children, number, counter);
    }
}

bool writeFile(const QString& fileName, const QByteArray& data, QString* error) {
    QString reason;
    if (TFileSave::write(fileName, data, reason)) return true;
    if (error) *error = reason;
    return false;
}

QJsonArray readList(const QByteArray& data) {
    return QJsonDocument::fromJson(data).object().value(QStringLiteral("list")).toArray();
}

QByteArray readFile(const QString& fileName) {
    QFile f(fileName);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

} // namespace

QByteArray TPrjList::toData(const QList<TPrjListItem>& tree) {
    QByteArray entries;
    {
        QTextStream out(&entries, QIODevice::WriteOnly);
        out.setCodec("UTF-8");
        int counter = 0;
        writeItems(out, tree, 0, counter);
    }
    // The last entry line loses its trailing comma (its last character before the line break).
    if (entries.endsWith(",\n")) entries.remove(entries.size() - 2, 1);
    return QByteArray(header) + entries + footer;
}

bool TPrjList::save(const QString& fileName, const QList<TPrjListItem>& tree, QString* error) {
    const QString reason = checkTree(tree);
    if (reason.isEmpty()) return writeFile(fileName, toData(tree), error);
    if (error) *error = reason;
    return false;
}

QString TPrjList::checkTree(const QList<TPrjListItem>& tree, int depth) {
    if (depth > maxDepth && !tree.isEmpty()) return Lang.get(1405).arg(maxDepth);
    for (const TPrjListItem& item : tree) {
        if (!TPrjText::isWritable(item.name) || !TPrjText::isWritable(item.file))
            return Lang.get(1406).arg(item.name);
        const QString reason = checkTree(item.children, depth + 1);
        if (!reason.isEmpty()) return reason;
    }
    return QString();
}

QList<TPrjListItem> TPrjList::load(const QString& fileName) {
    return fromData(readFile(fileName));
}

QList<TPrjListItem> TPrjList::fromData(const QByteArray& data, QString* error) {
    // Entries are collected flat with their parent numbers, then assembled bottom-up so that the
    // children of every entry stay in file order.
    struct Flat {
        int parent;
        TPrjListItem item;
    };
    QList<Flat> flat;
    QVector<int> depth; // of each entry, 1 at the top level
    for (const QJsonValue& v : readList(data)) {
        const QJsonObject o = v.toObject();
        Flat f{o.value(QStringLiteral("parent")).toInt(), {}};
        f.item.expand = o.value(QStringLiteral("expand")).toInt() != 0;
        f.item.name = o.value(QStringLiteral("name")).toString();
        f.item.file = o.value(QStringLiteral("file")).toString();
        // A parent must be an earlier entry; anything else goes to the top level.
        if (f.parent < 0 || f.parent > flat.size()) f.parent = 0;
        depth.append(f.parent ? depth.at(f.parent - 1) + 1 : 1);
        if (depth.last() > maxDepth) {
            if (error) *error = Lang.get(1405).arg(maxDepth);
            return {};
        }
        flat.append(f);
    }
    for (int i = flat.size() - 1; i >= 0; --i) {
        const int parent = flat.at(i).parent;
        if (parent > 0) flat[parent - 1].item.children.prepend(flat.at(i).item);
    }
    QList<TPrjListItem> tree;
    for (const Flat& f : flat)
        if (f.parent == 0) tree.append(f.item);
    return tree;
}

QByteArray TSelectPrjList::toData(const QList<TSelectPrjListRow>& rows) {
    QStringList lines;
    for (const TSelectPrjListRow& r : rows)
        lines.append(QStringLiteral("        {\"name\": \"%1\", \"file\": \"%2\"}").arg(r.name, r.file));
    QByteArray data(header);
    if (!lines.isEmpty()) data += lines.join(QStringLiteral(",\n")).toUtf8() + "\n";
    return data + footer;
}

bool TSelectPrjList::save(const QString& fileName, const QList<TSelectPrjListRow>& rows, QString* error) {
    for (const TSelectPrjListRow& r : rows)
        if (!TPrjText::isWritable(r.name) || !TPrjText::isWritable(r.file)) {
            if (error) *error = Lang.get(1406).arg(r.name);
            return false;
        }
    return writeFile(fileName, toData(rows), error);
}

QList<TSelectPrjListRow> TSelectPrjList::load(const QString& fileName) {
    return fromData(readFile(fileName));
}

QList<TSelectPrjListRow> TSelectPrjList::fromData(const QByteArray& data) {
    QList<TSelectPrjListRow> rows;
    for (const QJsonValue& v : readList(data)) {
        const QJsonObject o = v.toObject();
        rows.append({o.value(QStringLiteral("name")).toString(), o.value(QStringLiteral("file")).toString()});
    }
    return rows;
}
