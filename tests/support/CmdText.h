#pragma once

// A checked command of a project file as JSON text: its code and, when given, the rest of its keys.

#include <QString>

inline QString cmd(const QString& code, const QString& params = QString()) {
    return QStringLiteral(R"({"status": "1", "cmd": "%1"%2})")
        .arg(code, params.isEmpty() ? QString() : ", " + params);
}
