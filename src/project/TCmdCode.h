#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

// Command codes with their English display names and the family that executes each.
class TCmdCode {
public:
    enum Family { FamilyNone, FamilyTools, FamilyProg, FamilyDevice };

    TCmdCode();

    QString getName(const QString& code) const;       // empty for an unknown code (and for "separator")
    QString getCode(const QString& name) const;       // exact match of the display name, empty when none
    Family getFamily(const QString& code) const;      // FamilyNone for an unknown code
    QStringList getCodeList() const { return codes; } // every code, in table order

private:
    QHash<QString, QString> names;
    QHash<QString, Family> families;
    QStringList codes;
};

extern TCmdCode CmdCode;
