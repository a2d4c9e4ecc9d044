#pragma once

#include "app/TTypes.h"

#include <QString>

class TDataPrj;

// The project and list writers print names and values verbatim between double quotes, so a double quote,
// a backslash or a control character would come back as other JSON, or not at all. Texts are checked here
// before anything is written, and commands loaded with such values are marked invalid.
class TPrjText {
public:
    static bool isWritable(const QString& text);
    // The first key of a command record (the key itself or its value) that cannot be written; empty when
    // every one can.
    static QString findUnwritableKey(const TData& record);
    // Why a command with invalid parameters cannot run, shown under its display name: the general text,
    // or the key whose value a project file cannot keep.
    static QString getInvalidParamText(const QString& name, const TData& record);
    // Empty when the whole project can be written as itself; otherwise the text naming the
    // configuration, the command and the key that cannot.
    static QString checkProject(TDataPrj* prj);
};
