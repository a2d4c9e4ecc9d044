#pragma once

#include <QIcon>
#include <QString>

// The two icon sets (0 small, 1 large) of the resource folder "images".
class TIcons {
public:
    static QIcon getIcon(int set, const QString& name);
    static int getHeight(int set);
    // Toolbar and button metrics of a set, in the order the main window takes them.
    static void getSize(int set, int& toolBar, int& toolButton, int& tabHeight, int& listRow, int& menu,
                        int& status, int& button);
};
