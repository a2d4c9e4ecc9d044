#include "ui/TDialogSelectDevice.h"

#include "app/TApp.h"
#include "app/TLang.h"
#include "devices/TDeviceList.h"
#include "misc/dev_misc.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHash>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {
enum Column { ColName, ColFamily, ColSize, ColComment };

// A single-space device gives size and page size; a microcontroller those of its flash.
qint64 firstOf(const TData& p, const char* key, const char* alt) {
    return p.value(key, p.value(alt)).toLongLong();
}

TDialogSelectDevice::Entry entryOf(const QString& name, const QString& file, const TData& p) {
    TDialogSelectDevice::Entry e;
    e.name = name;
    e.file = file;
    e.family = p.value(QStringLiteral("gui_type")).toString();
    e.comment = p.value(QStringLiteral("comment")).toString();
    e.info = p.value(QStringLiteral("info")).toString();
    e.signature = p.value(QStringLiteral("signature")).toString();
    e.voltage = TDialogSelectDevice::getVoltage(e.info);
    e.size = firstOf(p, "size", "flash_size");
    e.pageSize = firstOf(p, "page_size", "flash_page_size");
    return e;
}

// A column header from a field caption: the caption without its colon.
QString header(QString caption) {
    if (caption.endsWith(QLatin1Char(':'))) caption.chop(1);
    return caption;
}

QString orNotGiven(const QString& text) {
    return text.isEmpty() ? Lang.get(551) : text;
}
} // namespace

TDialogSelectDevice::TDialogSelectDevice(QWidget* parent) : QDialog(parent), entries(loadEntries()) {
    setWindowTitle(Lang.get(539));
    auto* layout = new QVBoxLayout(this);
    auto* filters = new QFormLayout;
    search = new QLineEdit(this);
    search->setClearButtonEnabled(true);
    family = new QComboBox(this);
    family->addItem(Lang.get(542), QString());
    QStringList families;
    for (const Entry& e : entries) {
        if (!families.contains(e.family)) families.append(e.family);
    }
    std::sort(families.begin(), families.end());
    for (const QString& f : families)
        family->addItem(getFamilyView(f), f);
    filters->addRow(Lang.get(540), search);
    filters->addRow(Lang.get(541), family);
    layout->addLayout(filters);

    list = new QTreeWidget(this);
    list->setRootIsDecorated(false);
    list->setHeaderLabels(
        {header(Lang.get(537)), header(Lang.get(541)), header(Lang.get(543)), header(Lang.get(553))});
    for (int c : {ColName, ColFamily, ColSize})
        list->header()->setSectionResizeMode(c, QHeaderView::ResizeToContents);
    list->header()->setSectionResizeMode(ColComment, QHeaderView::Stretch);
    layout->addWidget(list, 1);
    count = new QLabel(this);
    layout->addWidget(count);

    auto* details = new QFormLayout;
    size = new QLabel(this);
    pageSize = new QLabel(this);
    voltage = new QLabel(this);
    signature = new QLabel(this);
    info = new QLabel(this);
    info->setWordWrap(true);
    details->addRow(Lang.get(543), size);
    details->addRow(Lang.get(544), pageSize);
    details->addRow(Lang.get(545), voltage);
    details->addRow(Lang.get(546), signature);
    details->addRow(Lang.get(553), info);
    layout->addLayout(details);

    layout->addWidget(TApp::createOkCancel(this, &ok));

    connect(search, &QLineEdit::textChanged, this, &TDialogSelectDevice::updateList);
    connect(family, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &TDialogSelectDevice::updateList);
    connect(list, &QTreeWidget::currentItemChanged, this, &TDialogSelectDevice::updateDetails);
    connect(list, &QTreeWidget::itemDoubleClicked, this, &QDialog::accept);
    updateList();
    resize(760, 560);
}

QList<TDialogSelectDevice::Entry> TDialogSelectDevice::loadEntries() {
    const QHash<QString, QString> devices = DeviceList.getDeviceList();
    QHash<QString, TData> files;
    QList<Entry> list;
    for (auto it = devices.cbegin(); it != devices.cend(); ++it) {
        if (!files.contains(it.value())) {
            TData param;
            DeviceList.getDeviceInstance(it.key(), it.value(), param);
            files.insert(it.value(), param);
        }
        list.append(entryOf(it.key(), it.value(), files.value(it.value())));
    }
    std::sort(list.begin(), list.end(), [](const Entry& a, const Entry& b) { return a.name < b.name; });
    return list;
}

bool TDialogSelectDevice::matches(const Entry& e, const QString& text, const QString& fam) {
    if (!fam.isEmpty() && e.family != fam) return false;
    const QString t = text.trimmed();
    return t.isEmpty() || e.name.contains(t, Qt::CaseInsensitive) ||
           e.comment.contains(t, Qt::CaseInsensitive) || e.info.contains(t, Qt::CaseInsensitive);
}

QString TDialogSelectDevice::getVoltage(const QString& text) {
    static const QRegularExpression range(
        QStringLiteral("(\\d+(?:\\.\\d+)?\\s*\\.\\.\\s*\\d+(?:\\.\\d+)?\\s*V)\\b"));
    const QRegularExpressionMatch m = range.match(text);
    return m.hasMatch() ? m.captured(1) : QString();
}

QString TDialogSelectDevice::getFamilyView(const QString& f) {
    if (f == QLatin1String("Dev24")) return Lang.get(548);
    if (f == QLatin1String("Dev25")) return Lang.get(549);
    if (f == QLatin1String("DevAVR8_SPI")) return Lang.get(550);
    if (f == QLatin1String("Dev93")) return Lang.get(554);
    return f;
}

void TDialogSelectDevice::setSearch(const QString& text) {
    search->setText(text);
}

void TDialogSelectDevice::setFamily(const QString& f) {
    family->setCurrentIndex(qMax(0, family->findData(f)));
}

QStringList TDialogSelectDevice::getVisibleNames() const {
    QStringList names;
    for (int i = 0; i < list->topLevelItemCount(); ++i)
        names.append(list->topLevelItem(i)->text(ColName));
    return names;
}

void TDialogSelectDevice::select(const QString& name) {
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
        if (list->topLevelItem(i)->text(ColName) != name) continue;
        list->setCurrentItem(list->topLevelItem(i));
        list->scrollToItem(list->topLevelItem(i));
    }
}

const TDialogSelectDevice::Entry* TDialogSelectDevice::selected() const {
    const QTreeWidgetItem* item = list->currentItem();
    return item ? &entries.at(item->data(ColName, Qt::UserRole).toInt()) : nullptr;
}

QString TDialogSelectDevice::getSelectedName() const {
    return selected() ? selected()->name : QString();
}

QString TDialogSelectDevice::getSelectedFile() const {
    return selected() ? selected()->file : QString();
}

QStringList TDialogSelectDevice::getDetails() const {
    return {size->text(), pageSize->text(), voltage->text(), signature->text()};
}

// The list keeps the selected part when it still matches.
void TDialogSelectDevice::updateList() {
    const QString keep = getSelectedName();
    const QString fam = family->currentData().toString();
    list->clear();
    for (int i = 0; i < entries.size(); ++i) {
        const Entry& e = entries.at(i);
        if (!matches(e, search->text(), fam)) continue;
        auto* item = new QTreeWidgetItem(
            list, {e.name, getFamilyView(e.family), TMiscDev::getViewDeviceSize(e.size), e.comment});
        item->setData(ColName, Qt::UserRole, i);
    }
    count->setText(Lang.get(555).arg(list->topLevelItemCount()).arg(entries.size()));
    select(keep);
    if (!list->currentItem() && list->topLevelItemCount() > 0) list->setCurrentItem(list->topLevelItem(0));
    updateDetails();
}

void TDialogSelectDevice::updateDetails() {
    const Entry* e = selected();
    size->setText(e ? TMiscDev::getViewDeviceSize(e->size) : QString());
    pageSize->setText(e ? TMiscDev::getViewDeviceSize(e->pageSize) : QString());
    voltage->setText(e ? orNotGiven(e->voltage) : QString());
    signature->setText(e ? orNotGiven(e->signature) : QString());
    info->setText(e ? e->info : QString());
    ok->setEnabled(e != nullptr);
}
