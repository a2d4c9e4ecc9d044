#include "ui/TWgtPrjList.h"

#include "app/CApp.h"
#include "app/TApp.h"
#include "app/TAppData.h"
#include "app/TLang.h"
#include "project/TPrjText.h"

#include <QContextMenuEvent>
#include <QDialogButtonBox>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QInputDialog>
#include <QJsonDocument>
#include <QMenu>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>

TWgtPrjList::TWgtPrjList(QWidget* parent) : QTreeWidget(parent) {
    setHeaderHidden(true);
    setDragDropMode(QAbstractItemView::InternalMove);
    setDefaultDropAction(Qt::MoveAction);
    setSelectionMode(QAbstractItemView::SingleSelection);
    connect(this, &QTreeWidget::itemDoubleClicked, this, &TWgtPrjList::slotActivated);
    auto saveQuietly = [this] {
        if (!loading) savePrjList();
    };
    connect(this, &QTreeWidget::itemExpanded, this, saveQuietly);
    connect(this, &QTreeWidget::itemCollapsed, this, saveQuietly);
}

QString TWgtPrjList::listDir() const {
    return QFileInfo(listFile).absolutePath();
}

QString TWgtPrjList::fileOf(const QTreeWidgetItem* item) const {
    const QString file = item ? item->data(0, Qt::UserRole).toString() : QString();
    return file.isEmpty() ? QString() : TApp::getAbsoluteFile(listDir(), file);
}

QTreeWidgetItem* TWgtPrjList::newItem(const QString& name, const QString& file) {
    auto* item = new QTreeWidgetItem({name});
    item->setData(0, Qt::UserRole, file);
    item->setToolTip(0, file);
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled;
    // Only folders take other entries.
    if (file.isEmpty()) flags |= Qt::ItemIsDropEnabled;
    item->setFlags(flags);
    // Asked of the style once: a lookup per entry is most of the time of showing a long list.
    if (dirIcon.isNull()) {
        dirIcon = style()->standardIcon(QStyle::SP_DirIcon);
        fileIcon = style()->standardIcon(QStyle::SP_FileIcon);
    }
    item->setIcon(0, file.isEmpty() ? dirIcon : fileIcon);
    return item;
}

QTreeWidgetItem* TWgtPrjList::buildItem(const TPrjListItem& entry, QList<QTreeWidgetItem*>& expanded) {
    QTreeWidgetItem* item = newItem(entry.name, entry.file);
    for (const TPrjListItem& child : entry.children)
        item->addChild(buildItem(child, expanded));
    if (entry.expand) expanded.append(item);
    return item;
}

// The branches are built apart and handed to the tree at once: inserted one by one into a shown tree,
// every entry would cost a pass over those before it.
void TWgtPrjList::addItems(const QList<TPrjListItem>& items) {
    QList<QTreeWidgetItem*> top, expanded;
    for (const TPrjListItem& entry : items)
        top.append(buildItem(entry, expanded));
    addTopLevelItems(top);
    for (QTreeWidgetItem* item : expanded)
        item->setExpanded(true);
}

bool TWgtPrjList::loadPrjList(const QString& file, const QString& name, const QString& current) {
    loading = true;
    clear();
    listFile = TApp::getAbsoluteFile(file);
    listName = name;
    errorText.clear();
    QFile f(listFile);
    QByteArray data;
    if (f.open(QIODevice::ReadOnly)) data = f.readAll();
    QJsonParseError err{};
    QString reason;
    const QList<TPrjListItem> tree = TPrjList::fromData(data, &reason);
    if (f.exists() && !data.trimmed().isEmpty() &&
        (!QJsonDocument::fromJson(data, &err).isObject() || err.error != QJsonParseError::NoError))
        reason = err.errorString();
    const bool damaged = !reason.isEmpty();
    writable = !damaged && (f.isOpen() || !f.exists());
    if (damaged) errorText = Lang.get(46).arg(listFile, reason);
    // Read, but with names the writer would not write back: shown, and never written over.
    const QString unwritable = damaged ? QString() : TPrjList::checkTree(tree);
    if (!unwritable.isEmpty()) {
        writable = false;
        errorText = Lang.get(1407).arg(listFile, unwritable);
    }
    addItems(tree);
    const QString currentFile = current.isEmpty() ? QString() : TApp::getAbsoluteFile(current);
    for (QTreeWidgetItemIterator it(this); *it && !currentFile.isEmpty(); ++it)
        if (fileOf(*it) == currentFile) setCurrentItem(*it);
    loading = false;
    if (damaged || !unwritable.isEmpty()) emit signalError(errorText);
    return !damaged;
}

QList<TPrjListItem> TWgtPrjList::readItems(const QTreeWidgetItem* parent) const {
    QList<TPrjListItem> items;
    const int n = parent ? parent->childCount() : topLevelItemCount();
    for (int i = 0; i < n; ++i) {
        const QTreeWidgetItem* item = parent ? parent->child(i) : topLevelItem(i);
        TPrjListItem entry;
        entry.name = item->text(0);
        entry.file = item->data(0, Qt::UserRole).toString();
        entry.expand = item->isExpanded();
        entry.children = readItems(item);
        items.append(entry);
    }
    return items;
}

QList<TPrjListItem> TWgtPrjList::getTree() const {
    return readItems(nullptr);
}

bool TWgtPrjList::savePrjList() {
    if (!writable || listFile.isEmpty()) return false;
    QString error;
    if (TPrjList::save(listFile, getTree(), &error)) return true;
    errorText = Lang.get(128).arg(listFile, error);
    emit signalError(errorText);
    return false;
}

QTreeWidgetItem* TWgtPrjList::addFolder(const QString& name) {
    if (!acceptText(name, Lang.get(1403))) return nullptr;
    QTreeWidgetItem* item = newItem(name, QString());
    QTreeWidgetItem* cur = currentItem();
    if (cur && fileOf(cur).isEmpty()) {
        cur->addChild(item);
        cur->setExpanded(true);
    } else if (cur && cur->parent()) {
        cur->parent()->addChild(item);
    } else {
        addTopLevelItem(item);
    }
    setCurrentItem(item);
    savePrjList();
    return item;
}

QTreeWidgetItem* TWgtPrjList::addProject(const QString& file, const QString& name) {
    const QString stored = TApp::getPathFile(listDir(), TApp::getAbsoluteFile(file));
    const QString shown = name.isEmpty() ? QFileInfo(file).completeBaseName() : name;
    if (!acceptText(stored + shown, Lang.get(1404).arg(file))) return nullptr;
    QTreeWidgetItem* item = newItem(shown, stored);
    QTreeWidgetItem* cur = currentItem();
    if (cur && fileOf(cur).isEmpty()) {
        cur->addChild(item);
        cur->setExpanded(true);
    } else if (cur && cur->parent()) {
        cur->parent()->insertChild(cur->parent()->indexOfChild(cur) + 1, item);
    } else {
        insertTopLevelItem(cur ? indexOfTopLevelItem(cur) + 1 : topLevelItemCount(), item);
    }
    setCurrentItem(item);
    savePrjList();
    return item;
}

bool TWgtPrjList::renameCurrent(const QString& name) {
    if (!currentItem() || name.trimmed().isEmpty() || !acceptText(name, Lang.get(1403))) return false;
    currentItem()->setText(0, name.trimmed());
    return savePrjList();
}

bool TWgtPrjList::acceptText(const QString& text, const QString& refusal) {
    if (TPrjText::isWritable(text)) return true;
    errorText = refusal;
    emit signalError(errorText);
    return false;
}

// A name the list writer could not write back is refused in the dialog itself: OK stays disabled and
// the reason is shown.
QString TWgtPrjList::askName(const QString& title, const QString& text) {
    QInputDialog dialog(this);
    dialog.setWindowTitle(title);
    dialog.setTextValue(text);
    auto check = [&dialog](const QString& value) {
        const bool good = TPrjText::isWritable(value);
        dialog.setLabelText(good ? Lang.get(35) : Lang.get(35) + QLatin1Char('\n') + Lang.get(1403));
        if (auto* box = dialog.findChild<QDialogButtonBox*>())
            box->button(QDialogButtonBox::Ok)->setEnabled(good && !value.trimmed().isEmpty());
    };
    connect(&dialog, &QInputDialog::textValueChanged, &dialog, check);
    check(text);
    return dialog.exec() == QDialog::Accepted ? dialog.textValue().trimmed() : QString();
}

void TWgtPrjList::removeCurrent() {
    delete currentItem();
    savePrjList();
}

// Removing a folder removes its whole branch: the user confirms first.
void TWgtPrjList::askRemove() {
    if (!currentItem()) return;
    QMessageBox box(QMessageBox::Question, Lang.get(31), Lang.get(129).arg(currentItem()->text(0)),
                    QMessageBox::Yes | QMessageBox::No, this);
    box.button(QMessageBox::Yes)->setText(Lang.get(92));
    box.button(QMessageBox::No)->setText(Lang.get(93));
    if (box.exec() == QMessageBox::Yes) removeCurrent();
}

void TWgtPrjList::dropEvent(QDropEvent* event) {
    QTreeWidget::dropEvent(event);
    savePrjList();
}

void TWgtPrjList::slotActivated(QTreeWidgetItem* item) {
    const QString file = fileOf(item);
    if (!file.isEmpty()) emit signalOpenProject(file);
}

void TWgtPrjList::askFolder() {
    const QString name = askName(Lang.get(28), Lang.get(34));
    if (!name.isEmpty()) addFolder(name);
}

void TWgtPrjList::askProject() {
    const QString file =
        QFileDialog::getOpenFileName(this, Lang.get(29), AppData.getPathProjectsAbs(), Lang.get(36));
    if (!file.isEmpty()) addProject(file);
}

void TWgtPrjList::askRename() {
    if (!currentItem()) return;
    const QString name = askName(Lang.get(30), currentItem()->text(0));
    if (!name.isEmpty()) renameCurrent(name);
}

// The folder of the chosen project, or the list's own folder for a folder entry.
void TWgtPrjList::openFolder() {
    const QString file = fileOf(currentItem());
    const QString folder = file.isEmpty() ? listDir() : QFileInfo(file).absolutePath();
    QProcess::startDetached(QStringLiteral("xdg-open"), {folder});
}

void TWgtPrjList::contextMenuEvent(QContextMenuEvent* event) {
    QMenu menu(this);
    const bool isProject = !fileOf(currentItem()).isEmpty();
    menu.addAction(Lang.get(32), this, [this] { slotActivated(currentItem()); })->setEnabled(isProject);
    menu.addAction(Lang.get(33), this, &TWgtPrjList::openFolder);
    menu.addSeparator();
    menu.addAction(Lang.get(28), this, &TWgtPrjList::askFolder)->setEnabled(writable);
    menu.addAction(Lang.get(29), this, &TWgtPrjList::askProject)->setEnabled(writable);
    menu.addAction(Lang.get(30), this, &TWgtPrjList::askRename)->setEnabled(writable && currentItem());
    menu.addAction(Lang.get(31), this, &TWgtPrjList::askRemove)->setEnabled(writable && currentItem());
    menu.exec(event->globalPos());
}
