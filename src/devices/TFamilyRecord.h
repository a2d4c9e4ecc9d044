#pragma once

#include <QString>

// One row of "auto.lst": a family taking part in auto-detection, its device file and signature list.
struct TFamilyRecord {
    QString family;
    QString devFile;
    QString signFile;
};
