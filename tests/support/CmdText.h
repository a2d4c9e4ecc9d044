#pragma once

// Project files as JSON text, built from their commands.

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

// A checked command: its code and, when given, the rest of its keys.

inline QString cmd(const QString& code, const QString& params = QString()) {
    return QStringLiteral(R"({"status": "1", "cmd": "%1"%2})")
        .arg(code, params.isEmpty() ? QString() : ", " + params);
}

// A project file with one configuration per (name, command lines) pair.
inline QByteArray project(const QList<QPair<QString, QStringList>>& cfgs) {
    QStringList parts;
    for (const auto& c : cfgs)
        parts << QStringLiteral(R"({"name": "%1", "description": "", "commands": [%2]})")
                     .arg(c.first, c.second.join(", "));
    return QStringLiteral(R"({"version": 1, "configurations": [%1]})").arg(parts.join(", ")).toUtf8();
}
