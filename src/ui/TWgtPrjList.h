#pragma once

#include "project/TPrjList.h"

#include <QIcon>
#include <QTreeWidget>

// The project-list tree of the main window: folders and project entries, kept in a list file that is
// written back after every change the user makes.
class TWgtPrjList : public QTreeWidget {
    Q_OBJECT
public:
    explicit TWgtPrjList(QWidget* parent = nullptr);

    // False when the file exists but is damaged: the tree is then empty and the file is never written,
    // so nothing the user had is lost. current names a project file to select.
    bool loadPrjList(const QString& file, const QString& name = QString(),
                     const QString& current = QString());
    bool savePrjList();
    QString getListFile() const { return listFile; }
    QString getListName() const { return listName; }
    QString getErrorText() const { return errorText; }

    QList<TPrjListItem> getTree() const;
    // New entries go under the current folder entry, or beside the current project entry.
    QTreeWidgetItem* addFolder(const QString& name);
    QTreeWidgetItem* addProject(const QString& file, const QString& name = QString());
    // Names and files the list writer could not write back are refused (null, false) with signalError.
    bool renameCurrent(const QString& name);
    void removeCurrent();
    // The absolute project file of an entry; empty for a folder.
    QString fileOf(const QTreeWidgetItem* item) const;

signals:
    void signalOpenProject(const QString& file);
    void signalError(const QString& text);

protected:
    void dropEvent(QDropEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private slots:
    void slotActivated(QTreeWidgetItem* item);
    void askRename();

private:
    void addItems(const QList<TPrjListItem>& items);
    QTreeWidgetItem* buildItem(const TPrjListItem& entry, QList<QTreeWidgetItem*>& expanded);
    QList<TPrjListItem> readItems(const QTreeWidgetItem* parent) const;
    QTreeWidgetItem* newItem(const QString& name, const QString& file);
    bool acceptText(const QString& text, const QString& refusal);
    QString askName(const QString& title, const QString& text);
    void askFolder();
    void askProject();
    void askRemove();
    void openFolder();
    QString listDir() const;

    QString listFile, listName, errorText;
    QIcon dirIcon, fileIcon;
    bool writable = false, loading = false;
};
