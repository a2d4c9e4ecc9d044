#pragma once

#include <QSettings>

// The application's INI settings file, always read and written as UTF-8.
class TSettings : public QSettings {
public:
    TSettings();
    explicit TSettings(const QString& fileName);

    // "<executable folder>/<executable base name>.ini", unless overridden (command line --settings).
    static QString getFileNameIniDefault();
    static void setFileNameIniOverride(const QString& fileName);
};
