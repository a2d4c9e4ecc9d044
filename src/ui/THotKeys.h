#pragma once

#include <QHash>
#include <QKeySequence>
#include <QList>
#include <QString>

class QAction;

// Hot keys of the main window's actions, kept under "/HotKeyMain/<action>" in the settings file.
class THotKeys {
public:
    struct Entry {
        QString key;  // settings key and action object name
        QString text; // the action's text
        QKeySequence sequence;
    };

    // Every action that may carry a hot key, with its default.
    static QList<Entry> defaults();
    // The saved keys, each falling back to its default.
    static QList<Entry> load();
    static void save(const QList<Entry>& entries);
    // Sets the key of each action whose object name is an entry's key.
    static void apply(const QList<Entry>& entries, const QList<QAction*>& actions);
};
