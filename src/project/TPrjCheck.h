#pragma once

#include <QByteArray>
#include <QStringList>

class TDataPrj;
class TDataCmd;
class QJsonObject;

// The loader takes a project file as it comes: a command without "status" is loaded unchecked, a
// number where a text belongs reads as empty, a key spelled wrong is kept and ignored. This check says
// so for projects written by hand or by a script, one line per problem, naming the configuration, the
// command and the missing or wrong key.
class TPrjCheck {
public:
    // data is the file's text, prj the project loaded from it.
    static QStringList check(const QByteArray& data, TDataPrj& prj);

private:
    static QStringList checkCmd(const QJsonObject& raw, TDataCmd* cmd);
    static QStringList checkKeys(const QJsonObject& raw, TDataCmd* cmd);
    static QStringList checkSetDevice(const QJsonObject& raw);
};
