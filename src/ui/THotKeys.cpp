#include "ui/THotKeys.h"

#include "app/TSettings.h"

#include <QAction>

QList<THotKeys::Entry> THotKeys::defaults() {
    return {
        {QStringLiteral("NewPrj"), 1, QKeySequence(QStringLiteral("Ctrl+N"))},
        {QStringLiteral("OpenPrj"), 2, QKeySequence(QStringLiteral("Ctrl+O"))},
        {QStringLiteral("SavePrj"), 3, QKeySequence(QStringLiteral("Ctrl+S"))},
        {QStringLiteral("SavePrjAs"), 4, QKeySequence(QStringLiteral("Ctrl+Shift+S"))},
        {QStringLiteral("ClosePrj"), 5, QKeySequence(QStringLiteral("Ctrl+W"))},
        {QStringLiteral("Quit"), 7, QKeySequence(QStringLiteral("Ctrl+Q"))},
        {QStringLiteral("Run"), 9, QKeySequence(QStringLiteral("F5"))},
        {QStringLiteral("RunAll"), 10, QKeySequence(QStringLiteral("Ctrl+F5"))},
        {QStringLiteral("Stop"), 11, QKeySequence(QStringLiteral("F6"))},
        {QStringLiteral("StopAll"), 12, QKeySequence(QStringLiteral("Ctrl+F6"))},
        {QStringLiteral("Continue"), 13, QKeySequence(QStringLiteral("F7"))},
        {QStringLiteral("ContinueAll"), 14, QKeySequence(QStringLiteral("Ctrl+F7"))},
        {QStringLiteral("Settings"), 16, QKeySequence(QStringLiteral("Ctrl+,"))},
        {QStringLiteral("HexView"), 19, QKeySequence(QStringLiteral("Ctrl+H"))},
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
