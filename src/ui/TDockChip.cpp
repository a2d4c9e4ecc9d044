#include "ui/TDockChip.h"

#include "app/TAppData.h"
#include "app/TLang.h"
#include "misc/THexBuffer.h"
#include "misc/TRangeReport.h"
#include "project/TChipCmds.h"
#include "ui/TDialogSelectDevice.h"
#include "ui/TWgtHexEdit.h"
#include "ui/TWgtLogExec.h"

#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>

namespace {

enum LangId {
    TextTitle = 1850,
    TextProg = 1851,
    TextPart = 1852,
    TextSelect = 1853,
    TextActionFirst = 1854, // the action names, in the order of TChipSession::Action
    TextStop = 1863,
    TextMemory = 1864,
    TextValue = 1865,
    TextSaveAsCfg = 1866,
    TextMemoryFirst = 1878, // the memory names, in the order of TChipCmds::memories
    TextFound = 1883,
    TextSeveral = 1884,
    TextNoneFound = 1885,
    TextReadBytes = 1886,
    TextRegisterRead = 1887,
    TextMatches = 1891,
    TextDiffers = 1892,
    TextCompareFile = 1862,
    TextFileDiffers = 1898,
    TextOpenFile = 1899,
    TextSaveFile = 1900,
    TextLoaded = 1901,
    TextSaved = 1902,
    TextFileMask = 1903,
    TextNoDiffs = 1804,
};

const QStringList kMemoryKeys = {"flash", "eeprom", "fuses", "lock", "status"};

} // namespace

TDockChip::TDockChip(TRunControl* control, QWidget* parent)
    : QDockWidget(Lang.get(TextTitle), parent), chip(new TChipSession(control, this)),
      buf(new THexBuffer(this)) {
    setObjectName(QStringLiteral("ChipPanel"));
    auto* body = new QWidget(this);
    auto* layout = new QVBoxLayout(body);
    layout->addWidget(makeChooser());
    layout->addWidget(makeActions());
    status = new QLabel(body);
    status->setWordWrap(true);
    status->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(status);
    auto* split = new QSplitter(Qt::Vertical, body);
    hexEdit = new TWgtHexEdit(split);
    hexEdit->setBuffer(buf);
    connect(buf, &THexBuffer::reset, this, &TDockChip::updateButtons);
    connect(hexEdit, &TWgtHexEdit::message, this, [this](const QString& text) { showStatus(text, false); });
    logView = new TWgtLogExec(split);
    logView->applySettings();
    split->addWidget(hexEdit);
    split->addWidget(logView);
    layout->addWidget(split, 1);
    setWidget(body);
    connect(chip, &TChipSession::signalEvent, logView, &TWgtLogExec::slotExecEventText);
    connect(chip, &TChipSession::signalProgress, logView, &TWgtLogExec::slotExecEventProc);
    connect(chip, &TChipSession::signalFinished, this, &TDockChip::finished);
    loadProgs();
    fillMemories();
}

QWidget* TDockChip::makeChooser() {
    auto* box = new QWidget(this);
    auto* form = new QFormLayout(box);
    form->setContentsMargins(0, 0, 0, 0);
    progs = new QComboBox(box);
    progs->setObjectName(QStringLiteral("ChipProg"));
    connect(progs, &QComboBox::currentTextChanged, chip, &TChipSession::setProg);
    form->addRow(Lang.get(TextProg), progs);
    auto* row = new QHBoxLayout;
    chips = new QComboBox(box);
    chips->setObjectName(QStringLiteral("ChipPart"));
    chips->setMinimumContentsLength(12);
    connect(chips, &QComboBox::textActivated, this, &TDockChip::selectChip);
    auto* select = new QPushButton(Lang.get(TextSelect), box);
    connect(select, &QPushButton::clicked, this, &TDockChip::chooseChip);
    auto* detect = new QPushButton(Lang.get(TextActionFirst + TChipSession::Detect), box);
    connect(detect, &QPushButton::clicked, this, [this] { start(TChipSession::Detect); });
    buttons.insert(TChipSession::Detect, detect);
    row->addWidget(chips, 1);
    row->addWidget(select);
    row->addWidget(detect);
    form->addRow(Lang.get(TextPart), row);
    auto* mem = new QHBoxLayout;
    memories = new QComboBox(box);
    connect(memories, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &TDockChip::updateButtons);
    valueEdit = new QLineEdit(box);
    valueEdit->setPlaceholderText(Lang.get(TextValue));
    mem->addWidget(memories, 1);
    mem->addWidget(valueEdit, 1);
    form->addRow(Lang.get(TextMemory), mem);
    return box;
}

QWidget* TDockChip::makeActions() {
    using A = TChipSession;
    auto* box = new QWidget(this);
    auto* grid = new QGridLayout(box);
    grid->setContentsMargins(0, 0, 0, 0);
    const QList<A::Action> order = {A::Read,   A::BlankCheck,  A::Erase,      A::Write,
                                    A::Verify, A::WriteVerify, A::CompareChip};
    for (int i = 0; i < order.size(); ++i) {
        const A::Action a = order.at(i);
        auto* b = new QPushButton(Lang.get(TextActionFirst + a), box);
        connect(b, &QPushButton::clicked, this, [this, a] { start(a); });
        buttons.insert(a, b);
        grid->addWidget(b, i / 4, i % 4);
    }
    stopButton = new QPushButton(Lang.get(TextStop), box);
    stopButton->setObjectName(QStringLiteral("ChipStop"));
    connect(stopButton, &QPushButton::clicked, chip, &TChipSession::stop);
    grid->addWidget(stopButton, 1, 3);
    compareFileButton = new QPushButton(Lang.get(TextCompareFile), box);
    connect(compareFileButton, &QPushButton::clicked, this, &TDockChip::askCompare);
    grid->addWidget(compareFileButton, 2, 0);
    auto* open = new QPushButton(Lang.get(TextOpenFile), box);
    connect(open, &QPushButton::clicked, this, &TDockChip::askLoad);
    grid->addWidget(open, 2, 1);
    auto* save = new QPushButton(Lang.get(TextSaveFile), box);
    connect(save, &QPushButton::clicked, this, &TDockChip::askSave);
    grid->addWidget(save, 2, 2);
    saveButton = new QPushButton(Lang.get(TextSaveAsCfg), box);
    connect(saveButton, &QPushButton::clicked, this, &TDockChip::signalSaveAsCfg);
    grid->addWidget(saveButton, 3, 0, 1, 4);
    return box;
}

void TDockChip::loadProgs() {
    const QString chosen = progs->currentText();
    const QSignalBlocker block(progs);
    progs->clear();
    progs->addItems(AppData.progName.getNameList());
    const QString def = AppData.progName.getNameFromIndex(AppData.progDefault);
    progs->setCurrentText(chosen.isEmpty() || progs->findText(chosen) < 0 ? def : chosen);
    chip->setProg(progs->currentText());
    updateButtons();
}

void TDockChip::chooseChip() {
    TDialogSelectDevice dialog(this);
    if (!chip->chip().isEmpty()) dialog.select(chip->chip());
    if (dialog.exec() == QDialog::Accepted) selectChip(dialog.getSelectedName());
}

bool TDockChip::selectChip(const QString& name) {
    if (!chip->setChip(name)) return false;
    if (chips->findText(name) < 0) {
        chips->clear();
        chips->addItem(name);
    }
    chips->setCurrentText(name);
    fillMemories();
    return true;
}

void TDockChip::fillMemories() {
    const QString was = memories->currentData().toString();
    const QSignalBlocker block(memories);
    memories->clear();
    for (const QString& m : chip->memories())
        memories->addItem(Lang.get(TextMemoryFirst + kMemoryKeys.indexOf(m)), m);
    selectMemory(was);
    updateButtons();
}

bool TDockChip::selectMemory(const QString& memory) {
    const int i = memories->findData(memory);
    if (i >= 0) memories->setCurrentIndex(i);
    updateButtons();
    return i >= 0;
}

void TDockChip::setValue(const QString& value) {
    valueEdit->setText(value);
}

QString TDockChip::value() const {
    return valueEdit->text().trimmed();
}

void TDockChip::updateButtons() {
    const QString memory = memories->currentData().toString();
    const bool busy = chip->isBusy();
    // Flash and EEPROM are written, verified and compared from the buffer, which must hold something.
    const bool fromBuffer = buf->size() > 0 || TChipCmds::isRegister(memory);
    for (auto it = buttons.cbegin(); it != buttons.cend(); ++it) {
        const auto action = TChipSession::Action(it.key());
        const bool needsBuffer = action == TChipSession::Write || action == TChipSession::Verify ||
                                 action == TChipSession::WriteVerify || action == TChipSession::CompareChip;
        it.value()->setEnabled(!busy && chip->offers(action, memory) && (fromBuffer || !needsBuffer));
    }
    stopButton->setEnabled(busy);
    saveButton->setEnabled(!busy && !chip->done().isEmpty());
    valueEdit->setEnabled(TChipCmds::isRegister(memory));
    progs->setEnabled(!busy);
    chips->setEnabled(!busy);
}

void TDockChip::showStatus(const QString& text, bool error) {
    status->setText(text);
    status->setStyleSheet(error ? QStringLiteral("color: #b00020;") : QString());
}

QString TDockChip::statusText() const {
    return status->text();
}

bool TDockChip::start(TChipSession::Action action) {
    logView->clear();
    const bool ok = chip->start(action, memories->currentData().toString(), buffer(), value(), buf->base());
    showStatus(ok ? QString() : chip->error(), !ok);
    updateButtons();
    return ok;
}

void TDockChip::finished(int action, bool ok) {
    updateButtons();
    if (!ok && !chip->error().isEmpty()) return showStatus(chip->error(), true);
    if (action == TChipSession::Detect) return showDetected(ok);
    if (!ok) return;
    const QString memory = memories->currentData().toString();
    if (action == TChipSession::Read && TChipCmds::isRegister(memory)) {
        setValue(chip->registerValue());
        showStatus(Lang.get(TextRegisterRead).arg(memories->currentText(), chip->registerValue()), false);
    } else if (action == TChipSession::Read) {
        setBuffer(chip->readData());
        showStatus(Lang.get(TextReadBytes).arg(TRangeReport::countText(chip->readData().size())), false);
    } else if (action == TChipSession::CompareChip) {
        // The chip is read whole from its first address; the buffer covers a part of it.
        showDiffs(TextDiffers, chip->readData().mid(int(buf->base()), int(buf->size())));
    } else if (action == TChipSession::Write || action == TChipSession::WriteVerify) {
        buf->setModified(false);
    }
}

void TDockChip::showDiffs(int header, const QByteArray& other) {
    const QList<THexBuffer::Diff> diffs = buf->compare(other);
    hexEdit->markDiffs(diffs);
    if (diffs.isEmpty())
        return showStatus(Lang.get(header == TextDiffers ? TextMatches : TextNoDiffs), false);
    showStatus(Lang.get(header) + QLatin1Char('\n') + buf->diffText(diffs), true);
}

bool TDockChip::compareWithFile(const QString& file) {
    QList<THexBuffer::Diff> diffs;
    QString error;
    if (!buf->compareFile(file, QString(), diffs, error)) {
        showStatus(error, true);
        return false;
    }
    hexEdit->markDiffs(diffs);
    if (diffs.isEmpty())
        showStatus(Lang.get(TextNoDiffs), false);
    else
        showStatus(Lang.get(TextFileDiffers) + QLatin1Char('\n') + buf->diffText(diffs), true);
    return true;
}

bool TDockChip::loadBuffer(const QString& file) {
    QString error;
    if (!buf->load(file, QString(), error)) return showStatus(error, true), false;
    showStatus(Lang.get(TextLoaded).arg(TRangeReport::countText(buf->size()), file), false);
    return true;
}

bool TDockChip::saveBuffer(const QString& file) {
    QString error;
    if (!buf->save(file, QString(), error)) return showStatus(error, true), false;
    showStatus(Lang.get(TextSaved).arg(TRangeReport::countText(buf->size()), file), false);
    return true;
}

void TDockChip::askLoad() {
    const QString file =
        QFileDialog::getOpenFileName(this, Lang.get(TextOpenFile), QString(), Lang.get(TextFileMask));
    if (!file.isEmpty()) loadBuffer(file);
}

// The HEX dialect's records above 64 KiB are read otherwise by other tools: the user decides.
void TDockChip::askSave() {
    const QString file =
        QFileDialog::getSaveFileName(this, Lang.get(TextSaveFile), QString(), Lang.get(TextFileMask));
    if (file.isEmpty()) return;
    const QString warning = buf->saveWarning(file, QString());
    if (!warning.isEmpty() &&
        QMessageBox::question(this, Lang.get(TextSaveFile), warning) != QMessageBox::Yes)
        return;
    saveBuffer(file);
}

void TDockChip::askCompare() {
    const QString file =
        QFileDialog::getOpenFileName(this, Lang.get(TextCompareFile), QString(), Lang.get(TextFileMask));
    if (!file.isEmpty()) compareWithFile(file);
}

void TDockChip::showDetected(bool ok) {
    const QStringList parts = chip->detected();
    if (!ok) return showStatus(Lang.get(TextNoneFound), true);
    const QSignalBlocker block(chips);
    chips->clear();
    chips->addItems(parts);
    if (parts.size() == 1) {
        selectChip(parts.first());
        showStatus(Lang.get(TextFound).arg(parts.first()), false);
    } else {
        chips->setCurrentIndex(parts.indexOf(chip->chip()));
        fillMemories();
        showStatus(Lang.get(TextSeveral).arg(parts.join(QStringLiteral(", "))), false);
    }
}

void TDockChip::setBuffer(const QByteArray& data) {
    buf->setData(data);
    hexEdit->markDiffs({});
}

QByteArray TDockChip::buffer() const {
    return buf->data();
}
