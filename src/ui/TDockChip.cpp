#include "ui/TDockChip.h"

#include "app/TAppData.h"
#include "app/TLang.h"
#include "misc/TRangeReport.h"
#include "project/TChipCmds.h"
#include "ui/TDialogSelectDevice.h"
#include "ui/TWgtHexView.h"
#include "ui/TWgtLogExec.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
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
};

const QStringList kMemoryKeys = {"flash", "eeprom", "fuses", "lock", "status"};

} // namespace

TDockChip::TDockChip(TRunControl* control, QWidget* parent)
    : QDockWidget(Lang.get(TextTitle), parent), chip(new TChipSession(control, this)) {
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
    hexView = new TWgtHexView(split);
    logView = new TWgtLogExec(split);
    logView->applySettings();
    split->addWidget(hexView);
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
    connect(stopButton, &QPushButton::clicked, chip, &TChipSession::stop);
    grid->addWidget(stopButton, 1, 3);
    saveButton = new QPushButton(Lang.get(TextSaveAsCfg), box);
    connect(saveButton, &QPushButton::clicked, this, &TDockChip::signalSaveAsCfg);
    grid->addWidget(saveButton, 2, 0, 1, 4);
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
    for (auto it = buttons.cbegin(); it != buttons.cend(); ++it)
        it.value()->setEnabled(!busy && chip->offers(TChipSession::Action(it.key()), memory));
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
    const bool ok = chip->start(action, memories->currentData().toString(), buffer(), value());
    showStatus(ok ? QString() : chip->error(), !ok);
    updateButtons();
    return ok;
}

void TDockChip::finished(int action, bool ok) {
    updateButtons();
    if (action == TChipSession::Detect) return showDetected(ok);
    if (!ok) return showStatus(chip->error(), !chip->error().isEmpty());
    const QString memory = memories->currentData().toString();
    if (action == TChipSession::Read && TChipCmds::isRegister(memory)) {
        setValue(chip->registerValue());
        showStatus(Lang.get(TextRegisterRead).arg(memories->currentText(), chip->registerValue()), false);
    } else if (action == TChipSession::Read) {
        setBuffer(chip->readData());
        showStatus(Lang.get(TextReadBytes).arg(TRangeReport::countText(chip->readData().size())), false);
    } else if (action == TChipSession::CompareChip) {
        const bool same = chip->readData() == buffer();
        showStatus(Lang.get(same ? TextMatches : TextDiffers), !same);
    }
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

// The buffer's one seam: the view that holds it.
void TDockChip::setBuffer(const QByteArray& data) {
    hexView->setData(data);
}

QByteArray TDockChip::buffer() const {
    return hexView->getData();
}
