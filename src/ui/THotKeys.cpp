#include "ui/THotKeys.h"

#include "app/TLang.h"
#include "app/TSettings.h"

#include <QAction>

QList<THotKeys::Entry> THotKeys::defaults() {
    return {
        {QStringLiteral("NewPrj"), Lang.get(1), QKeySequence(QStringLiteral("Ctrl+N"))},
        {QStringLiteral("OpenPrj"), Lang.get(2), QKeySequence(QStringLiteral("Ctrl+O"))},
        {QStringLiteral("SavePrj"), Lang.get(3), QKeySequence(QStringLiteral("Ctrl+S"))},
        {QStringLiteral("SavePrjAs"), Lang.get(4), QKeySequence(QStringLiteral("Ctrl+Shift+S"))},
        {QStringLiteral("ClosePrj"), Lang.get(5), QKeySequence(QStringLiteral("Ctrl+W"))},
        {QStringLiteral("Quit"), Lang.get(7), QKeySequence(QStringLiteral("Ctrl+Q"))},
        {QStringLiteral("Run"), Lang.get(9), QKeySequence(QStringLiteral("F5"))},
        {QStringLiteral("RunAll"), Lang.get(10), QKeySequence(QStringLiteral("Ctrl+F5"))},
        {QStringLiteral("Stop"), Lang.get(11), QKeySequence(QStringLiteral("F6"))},
        {QStringLiteral("StopAll"), Lang.get(12), QKeySequence(QStringLiteral("Ctrl+F6"))},
        {QStringLiteral("Continue"), Lang.get(13), QKeySequence(QStringLiteral("F7"))},
        {QStringLiteral("ContinueAll"), Lang.get(14), QKeySequence(QStringLiteral("Ctrl+F7"))},
        {QStringLiteral("Settings"), Lang.get(16), QKeySequence(QStringLiteral("Ctrl+,"))},
        {QStringLiteral("HexView"), Lang.get(19), QKeySequence(QStringLiteral("Ctrl+H"))},
        {QStringLiteral("Undo"), Lang.get(621), QKeySequence(QStringLiteral("Ctrl+Z"))},
        {QStringLiteral("Redo"), Lang.get(622), QKeySequence(QStringLiteral("Ctrl+Shift+Z"))},
        {QStringLiteral("CutCmd"), Lang.get(628), QKeySequence(QStringLiteral("Ctrl+X"))},
        {QStringLiteral("CopyCmd"), Lang.get(629), QKeySequence(QStringLiteral("Ctrl+C"))},
        {QStringLiteral("PasteCmd"), Lang.get(630), QKeySequence(QStringLiteral("Ctrl+V"))},
        {QStringLiteral("DeleteCmd"), Lang.get(631), QKeySequence(QStringLiteral("Del"))},
        {QStringLiteral("MoveCmdUp"), Lang.get(632), QKeySequence(QStringLiteral("Ctrl+Up"))},
        {QStringLiteral("MoveCmdDown"), Lang.get(633), QKeySequence(QStringLiteral("Ctrl+Down"))},
    };
}

QList<THotKeys::Entry> THotKeys::load() {
    TSettings s;
    QList<Entry> entries = defaults();
    for (Entry& e : entries) {
        const QString key = QStringLiteral("/HotKeyMain/") + e.key;
        if (s.contains(key)) e.sequence = QKeySequence(s.value(key).toString());
    }
    return entries;
}

void THotKeys::save(const QList<Entry>& entries) {
    TSettings s;
    for (const Entry& e : entries)
        s.setValue(QStringLiteral("/HotKeyMain/") + e.key, e.sequence.toString(QKeySequence::PortableText));
    s.sync();
}

void THotKeys::apply(const QList<Entry>& entries, const QList<QAction*>& actions) {
    for (QAction* a : actions)
        for (const Entry& e : entries)
            if (a->objectName() == e.key) a->setShortcut(e.sequence);
}
