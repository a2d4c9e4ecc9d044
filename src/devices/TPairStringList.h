#pragma once

#include <QList>
#include <QPair>
#include <QString>

// An ordered list of (left, right) text pairs in file order; duplicates are kept.
using TPairStringList = QList<QPair<QString, QString>>;
